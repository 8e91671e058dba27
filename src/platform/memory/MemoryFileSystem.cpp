// MemoryFileSystem.cpp: drives, folders and files in memory, with Windows path rules and
// the classic failure numbers.
#include <algorithm>
#include <cctype>

#include "platform/AnsiCase.h"
#include "platform/memory/MemoryPlatform.h"
#include "platform/memory/ShortNames.h"

namespace orvex::platform::memory {

struct MemoryFileSystem::Node {
    std::string name;
    std::string shortName;  // empty when the name is an 8.3 name itself
    bool folder = false;
    std::uint32_t attributes = 0;  // without the directory and normal bits
    bool locked = false;
    bool undeletable = false;
    std::uint64_t stamp = 0;  // a folder's: the file system's change count at its last change
    std::shared_ptr<std::string> bytes = std::make_shared<std::string>();
    std::vector<std::unique_ptr<Node>> children;

    Node* child(std::string_view wanted) {
        for (auto& c : children)
            if (EqualsNoCase(c->name, wanted) || EqualsNoCase(c->shortName, wanted)) return c.get();
        return nullptr;
    }
    std::uint32_t reportedAttributes() const {
        if (folder) return attributes | attr::kDirectory;
        return attributes != 0 ? attributes : attr::kNormal;
    }
};

struct MemoryFileSystem::Drive {
    int type = drivetype::kFixed;
    std::uint64_t freeBytes = kDefaultFreeSpace;
    bool ready = true;
    Node root;
};

struct MemoryFileSystem::WriteFaults {
    std::uint64_t writes = 0;
    std::uint64_t failAt = 0;  // 0: no failure armed
    int number = 0;
};

// Where a path leads: the folder that holds its last part, and the entry, if any.
struct MemoryFileSystem::Located {
    Drive* drive = nullptr;
    Node* parent = nullptr;  // nullptr for a drive's root
    Node* node = nullptr;
    std::string leaf;
    bool parentMissing = false;
    std::vector<Node*> chain;  // the folders from the root down to the parent
};

namespace {

constexpr std::size_t kMaxNameLength = 255;
constexpr std::uint64_t kMaxFileSize = 1ull << 30;  // larger writes count as a full disk
constexpr std::uint32_t kStoredAttributes = ~(attr::kDirectory | attr::kNormal);

struct ParsedPath {
    char drive = 0;  // upper case
    std::vector<std::string> parts;
    bool trailingSeparator = false;
};

bool IsSeparator(char c) {
    return c == '\\' || c == '/';
}

bool HasForbiddenCharacter(std::string_view name) {
    return std::any_of(name.begin(), name.end(), [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string_view("<>:\"|?*").find(c) != std::string_view::npos;
    });
}

std::optional<char> DriveLetter(std::string_view path) {
    if (path.size() < 2 || path[1] != ':' || !std::isalpha(static_cast<unsigned char>(path[0])))
        return std::nullopt;
    return static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
}

// Splits "C:\a\.\b\..\c" into drive and parts as Win32 normalises it: "." and ".." are
// resolved, trailing dots and blanks of a part are dropped. std::nullopt: not a valid name.
std::optional<ParsedPath> Parse(std::string_view path) {
    const auto letter = DriveLetter(path);
    if (!letter) return std::nullopt;
    ParsedPath parsed;
    parsed.drive = *letter;
    std::string_view rest = path.substr(2);
    parsed.trailingSeparator = !rest.empty() && IsSeparator(rest.back());
    std::size_t start = 0;
    while (start <= rest.size()) {
        std::size_t end = start;
        while (end < rest.size() && !IsSeparator(rest[end]))
            ++end;
        std::string part(rest.substr(start, end - start));
        start = end + 1;
        if (part == "..") {
            if (!parsed.parts.empty()) parsed.parts.pop_back();
            continue;
        }
        while (!part.empty() && (part.back() == '.' || part.back() == ' '))
            part.pop_back();
        if (part.empty()) continue;
        if (part.size() > kMaxNameLength || HasForbiddenCharacter(part)) return std::nullopt;
        parsed.parts.push_back(std::move(part));
    }
    return parsed;
}

std::string DriveRoot(char letter) {
    return std::string{letter, ':', '\\'};
}

class MemoryStream : public FileStream {
  public:
    MemoryStream(std::shared_ptr<std::string> data, OpenMode mode,
                 std::shared_ptr<MemoryFileSystem::WriteFaults> faults)
        : data_(std::move(data)), mode_(mode), faults_(std::move(faults)) {
        if (mode == OpenMode::Append) position_ = data_->size();
    }

    std::size_t read(char* buffer, std::size_t size) override {
        if (mode_ == OpenMode::Write || mode_ == OpenMode::Append) Raise(failure::kBadFileMode);
        if (position_ >= data_->size()) return 0;
        const std::size_t n = std::min<std::uint64_t>(size, data_->size() - position_);
        std::copy_n(data_->data() + position_, n, buffer);
        position_ += n;
        return n;
    }

    void write(const char* bytes, std::size_t size) override;

    void seek(std::uint64_t position) override { position_ = position; }
    std::uint64_t position() override { return position_; }
    std::uint64_t size() override { return data_->size(); }
    void flush() override {}

  private:
    std::shared_ptr<std::string> data_;
    OpenMode mode_;
    std::shared_ptr<MemoryFileSystem::WriteFaults> faults_;
    std::uint64_t position_ = 0;
};

}  // namespace

void MemoryStream::write(const char* bytes, std::size_t size) {
    if (mode_ == OpenMode::Read) Raise(failure::kBadFileMode);
    auto& faults = *faults_;
    ++faults.writes;
    if (faults.failAt != 0 && faults.writes == faults.failAt) {
        faults.failAt = 0;
        Raise(faults.number);
    }
    if (position_ > kMaxFileSize || size > kMaxFileSize - position_) Raise(failure::kDiskFull);
    const std::size_t end = position_ + size;
    if (end > data_->size()) data_->resize(end, '\0');
    std::copy_n(bytes, size, data_->data() + position_);
    position_ = end;
}

MemoryFileSystem::MemoryFileSystem() : faults_(std::make_shared<WriteFaults>()) {}

MemoryFileSystem::~MemoryFileSystem() = default;

MemoryFileSystem::Drive& MemoryFileSystem::driveOf(std::string_view path) {
    const auto letter = DriveLetter(path);
    if (!letter) Raise(failure::kBadFileName);
    auto it = drives_.find(*letter);
    if (it == drives_.end()) Raise(failure::kPathNotFound);
    if (!it->second->ready) Raise(failure::kDiskNotReady);
    return *it->second;
}

MemoryFileSystem::Located MemoryFileSystem::locate(std::string_view path) {
    const auto parsed = Parse(path);
    if (!parsed) Raise(failure::kBadFileName);
    Located at;
    at.drive = &driveOf(path);
    if (parsed->parts.empty()) {
        at.node = &at.drive->root;
        return at;
    }
    Node* folder = &at.drive->root;
    at.chain.push_back(folder);
    for (std::size_t i = 0; i + 1 < parsed->parts.size(); ++i) {
        folder = folder->child(parsed->parts[i]);
        if (folder == nullptr || !folder->folder) {
            at.parentMissing = true;
            return at;
        }
        at.chain.push_back(folder);
    }
    at.parent = folder;
    at.leaf = parsed->parts.back();
    at.node = folder->child(at.leaf);
    if (at.node != nullptr && !at.node->folder && parsed->trailingSeparator) at.node = nullptr;
    return at;
}

MemoryFileSystem::Node& MemoryFileSystem::requireEntry(std::string_view path) {
    Located at = locate(path);
    if (at.parentMissing) Raise(failure::kPathNotFound);
    if (at.node == nullptr) Raise(failure::kFileNotFound);
    return *at.node;
}

MemoryFileSystem::Node& MemoryFileSystem::requireFile(std::string_view path) {
    Node& node = requireEntry(path);
    if (node.folder) Raise(failure::kFileNotFound);
    return node;
}

MemoryFileSystem::Node& MemoryFileSystem::requireParentFolder(std::string_view path,
                                                              std::string& leaf) {
    Located at = locate(path);
    if (at.parentMissing) Raise(failure::kPathNotFound);
    if (at.parent == nullptr) Raise(failure::kPathFileAccess);  // a drive's root
    leaf = at.leaf;
    return *at.parent;
}

MemoryFileSystem::Node& MemoryFileSystem::newChild(Node& folder, std::string name, bool isFolder) {
    auto node = std::make_unique<Node>();
    node->shortName = MakeShortName(
        name, [&folder](std::string_view candidate) { return folder.child(candidate) != nullptr; });
    node->name = std::move(name);
    node->folder = isFolder;
    node->attributes = isFolder ? 0 : attr::kArchive;
    folder.children.push_back(std::move(node));
    touch(folder);
    return *folder.children.back();
}

std::unique_ptr<FileStream> MemoryFileSystem::open(std::string_view path, OpenMode mode) {
    Located at = locate(path);
    if (at.parentMissing) Raise(failure::kPathNotFound);
    Node* node = at.node;
    if (node != nullptr && node->folder) Raise(failure::kPathFileAccess);
    if (node != nullptr && node->locked) Raise(failure::kPermissionDenied);
    if (mode == OpenMode::Read) {
        if (node == nullptr) Raise(failure::kFileNotFound);
    } else {
        if (node != nullptr && (node->attributes & attr::kReadOnly) != 0)
            Raise(failure::kPathFileAccess);
        if (node == nullptr) node = &newChild(*at.parent, at.leaf, false);
        if (mode == OpenMode::Write) node->bytes->clear();
    }
    return std::make_unique<MemoryStream>(node->bytes, mode, faults_);
}

bool MemoryFileSystem::fileExists(std::string_view path) {
    try {
        Located at = locate(path);
        return at.node != nullptr && !at.node->folder;
    } catch (const Failure&) {
        return false;
    }
}

bool MemoryFileSystem::folderExists(std::string_view path) {
    try {
        Located at = locate(path);
        return at.node != nullptr && at.node->folder;
    } catch (const Failure&) {
        return false;
    }
}

std::vector<std::string> MemoryFileSystem::drives() {
    std::vector<std::string> roots;
    for (const auto& [letter, drive] : drives_)
        roots.push_back(DriveRoot(letter));
    return roots;
}

int MemoryFileSystem::driveType(std::string_view root) {
    const auto letter = DriveLetter(root);
    auto it = letter ? drives_.find(*letter) : drives_.end();
    return it == drives_.end() ? drivetype::kNoRoot : it->second->type;
}

std::vector<DirEntry> MemoryFileSystem::list(std::string_view folder) {
    Located at = locate(folder);
    if (at.parentMissing || at.node == nullptr || !at.node->folder) Raise(failure::kPathNotFound);
    std::vector<DirEntry> entries;
    for (const auto& c : at.node->children)
        entries.push_back(DirEntry{c->name, c->shortName, c->reportedAttributes(),
                                   c->folder ? 0 : c->bytes->size()});
    std::sort(entries.begin(), entries.end(), [](const DirEntry& a, const DirEntry& b) {
        return AnsiUpperText(a.name) < AnsiUpperText(b.name);
    });
    return entries;
}

namespace {
// Rebuilds a path from the nodes it passes, each named by `pick`.
template <class Pick>
std::string Spell(std::string_view original, const std::vector<MemoryFileSystem::Node*>& chain,
                  MemoryFileSystem::Node* last, Pick pick) {
    std::string out(original.substr(0, 2));
    for (std::size_t i = 1; i < chain.size(); ++i)
        out.append("\\").append(pick(*chain[i]));
    if (!chain.empty()) out.append("\\").append(pick(*last));
    if (chain.empty() || IsSeparator(original.back())) out += "\\";
    return out;
}
}  // namespace

std::string MemoryFileSystem::shortPath(std::string_view path) {
    Node& node = requireEntry(path);
    return Spell(path, locate(path).chain, &node,
                 [](const Node& n) { return n.shortName.empty() ? n.name : n.shortName; });
}

std::string MemoryFileSystem::longPath(std::string_view path) {
    Node& node = requireEntry(path);
    return Spell(path, locate(path).chain, &node, [](const Node& n) { return n.name; });
}

std::uint32_t MemoryFileSystem::attributes(std::string_view path) {
    return requireEntry(path).reportedAttributes();
}

void MemoryFileSystem::setAttributes(std::string_view path, std::uint32_t attributes) {
    requireEntry(path).attributes = attributes & kStoredAttributes;
}

std::uint64_t MemoryFileSystem::length(std::string_view path) {
    return requireFile(path).bytes->size();
}

void MemoryFileSystem::copy(std::string_view from, std::string_view to, bool overwrite) {
    Node& source = requireFile(from);
    if (source.locked) Raise(failure::kPermissionDenied);
    std::string leaf;
    Node& folder = requireParentFolder(to, leaf);
    Node* target = folder.child(leaf);
    if (target != nullptr) {
        if (target->folder) Raise(failure::kPathFileAccess);
        if (!overwrite) Raise(failure::kFileExists);
        if (target == &source || target->locked) Raise(failure::kPermissionDenied);
        if ((target->attributes & attr::kReadOnly) != 0) Raise(failure::kPathFileAccess);
    } else {
        target = &newChild(folder, leaf, false);
    }
    target->bytes->assign(*source.bytes);
    target->attributes = source.attributes;
}

void MemoryFileSystem::remove(std::string_view path) {
    Located at = locate(path);
    if (at.parentMissing) Raise(failure::kPathNotFound);
    Node* node = at.node;
    if (node == nullptr) Raise(failure::kFileNotFound);
    if (at.parent == nullptr) Raise(failure::kPathFileAccess);
    if (node->locked) Raise(failure::kPermissionDenied);
    if (node->undeletable) Raise(failure::kPathFileAccess);
    if (node->folder ? !node->children.empty() : (node->attributes & attr::kReadOnly) != 0)
        Raise(failure::kPathFileAccess);
    std::erase_if(at.parent->children, [node](const auto& c) { return c.get() == node; });
    touch(*at.parent);
}

void MemoryFileSystem::createFolder(std::string_view path) {
    Located at = locate(path);
    if (at.parentMissing) Raise(failure::kPathNotFound);
    if (at.node != nullptr || at.parent == nullptr) Raise(failure::kPathFileAccess);
    newChild(*at.parent, at.leaf, true);
}

void MemoryFileSystem::replace(std::string_view from, std::string_view to) {
    Located source = locate(from);
    if (source.parentMissing) Raise(failure::kPathNotFound);
    Node* moving = source.node;
    if (moving == nullptr) Raise(failure::kFileNotFound);
    if (source.parent == nullptr) Raise(failure::kPathFileAccess);
    if (moving->locked) Raise(failure::kPermissionDenied);
    Located target = locate(to);
    if (target.parentMissing) Raise(failure::kPathNotFound);
    if (target.parent == nullptr) Raise(failure::kPathFileAccess);
    if (std::find(target.chain.begin(), target.chain.end(), moving) != target.chain.end())
        Raise(failure::kPathFileAccess);  // a folder into itself
    touch(*source.parent);
    if (target.node == moving) {  // the same entry: only the spelling changes
        moving->name = target.leaf;
        return;
    }
    if (Node* old = target.node) {
        if (old->folder || moving->folder) Raise(failure::kPathFileAccess);
        if (old->locked) Raise(failure::kPermissionDenied);
        if ((old->attributes & attr::kReadOnly) != 0) Raise(failure::kPathFileAccess);
        std::erase_if(target.parent->children, [old](const auto& c) { return c.get() == old; });
    }
    Node& placed = newChild(*target.parent, target.leaf, moving->folder);
    const std::string shortName = placed.shortName;
    auto it = std::find_if(source.parent->children.begin(), source.parent->children.end(),
                           [moving](const auto& c) { return c.get() == moving; });
    placed = std::move(**it);
    placed.name = target.leaf;
    placed.shortName = shortName;
    source.parent->children.erase(it);
}

std::uint64_t MemoryFileSystem::freeSpace(std::string_view root) {
    return driveOf(root).freeBytes;
}

std::uint64_t MemoryFileSystem::folderStamp(std::string_view folder) {
    Located at = locate(folder);
    if (at.parentMissing || at.node == nullptr || !at.node->folder) Raise(failure::kPathNotFound);
    return at.node->stamp;
}

void MemoryFileSystem::touch(Node& folder) {
    folder.stamp = ++changes_;
}

void MemoryFileSystem::addDrive(std::string_view root, int type, std::uint64_t freeBytes) {
    const auto letter = DriveLetter(std::string(root.substr(0, 1)) + ":");
    if (!letter) Raise(failure::kBadFileName);
    auto& drive = drives_[*letter];
    if (!drive) drive = std::make_unique<Drive>();
    drive->root.folder = true;
    drive->type = type;
    drive->freeBytes = freeBytes;
}

void MemoryFileSystem::setDriveReady(std::string_view root, bool ready) {
    const auto letter = DriveLetter(std::string(root.substr(0, 1)) + ":");
    auto it = letter ? drives_.find(*letter) : drives_.end();
    if (it == drives_.end()) Raise(failure::kPathNotFound);
    it->second->ready = ready;
}

void MemoryFileSystem::addFolder(std::string_view path) {
    const auto parsed = Parse(path);
    if (!parsed) Raise(failure::kBadFileName);
    if (drives_.find(parsed->drive) == drives_.end()) addDrive(path);
    Node* folder = &driveOf(path).root;
    for (const auto& part : parsed->parts) {
        Node* next = folder->child(part);
        if (next == nullptr) next = &newChild(*folder, part, true);
        if (!next->folder) Raise(failure::kPathFileAccess);
        folder = next;
    }
}

void MemoryFileSystem::addFile(std::string_view path, std::string_view bytes,
                               std::uint32_t attributes) {
    const auto parsed = Parse(path);
    if (!parsed || parsed->parts.empty()) Raise(failure::kBadFileName);
    std::string parent = DriveRoot(parsed->drive);
    for (std::size_t i = 0; i + 1 < parsed->parts.size(); ++i)
        parent += parsed->parts[i] + "\\";
    addFolder(parent);
    std::string leaf;
    Node& folder = requireParentFolder(path, leaf);
    Node* node = folder.child(leaf);
    if (node == nullptr) node = &newChild(folder, leaf, false);
    if (node->folder) Raise(failure::kPathFileAccess);
    node->bytes->assign(bytes);
    node->attributes = attributes & kStoredAttributes;
}

void MemoryFileSystem::lock(std::string_view path, bool locked) {
    requireEntry(path).locked = locked;
}

void MemoryFileSystem::denyDelete(std::string_view path) {
    requireEntry(path).undeletable = true;
}

void MemoryFileSystem::failWrite(int nth, int number) {
    faults_->failAt = nth > 0 ? faults_->writes + static_cast<std::uint64_t>(nth) : 0;
    faults_->number = number;
}

std::uint64_t MemoryFileSystem::writeCount() const {
    return faults_->writes;
}

std::string MemoryFileSystem::contents(std::string_view path) {
    return *requireFile(path).bytes;
}

namespace {
void CollectFiles(const MemoryFileSystem::Node& folder, const std::string& prefix,
                  std::vector<std::string>& out);
}

std::vector<std::string> MemoryFileSystem::filesBelow(std::string_view folder) {
    std::vector<std::string> out;
    Node& start = requireEntry(folder);
    std::string prefix = longPath(folder);
    if (prefix.back() != '\\') prefix += '\\';
    if (start.folder) CollectFiles(start, prefix, out);
    std::sort(out.begin(), out.end(), [](const std::string& a, const std::string& b) {
        return AnsiUpperText(a) < AnsiUpperText(b);
    });
    return out;
}

namespace {
void CollectFiles(const MemoryFileSystem::Node& folder, const std::string& prefix,
                  std::vector<std::string>& out) {
    for (const auto& c : folder.children) {
        if (c->folder)
            CollectFiles(*c, prefix + c->name + "\\", out);
        else
            out.push_back(prefix + c->name);
    }
}
}  // namespace

}  // namespace orvex::platform::memory
