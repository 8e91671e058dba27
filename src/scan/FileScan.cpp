// FileScan.cpp: the folder walk, the judgment of one file, and its digest.
#include "scan/FileScan.h"

namespace orvex {

void colFiles::LoadFiles(const std::string&, const std::string&, std::int32_t&) {}

void colFiles::LoadFiles(const std::string& root, const std::string& relative) {
    std::int32_t status = 0;
    LoadFiles(root, relative, status);
}

void colFiles::Remove(std::int32_t) {}

VbBool ScumFile(const std::string&, const std::string&, VbBool) {
    return VbFalse;
}

std::string JustExt(const std::string&) {
    return {};
}

std::string MD5File(const std::string&) {
    return kMd5FileNotFound;
}

}  // namespace orvex
