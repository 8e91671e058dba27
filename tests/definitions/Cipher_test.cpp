// Cipher_test.cpp: Coding's transformations and the Encrypt/Decrypt contract, including
// stored lines computed independently of this code.
#include "definitions/Cipher.h"

#include "core/AppState.h"
#include "core/Rnd.h"
#include "definitions/Coding.h"
#include "support/MemoryFixture.h"

namespace orvex {
namespace {

// `text` after one step of Coding: Stretch or Shrink.
std::string Coded(std::string_view text, void (Coding::*step)()) {
    Coding coding;
    coding.Text(text);
    (coding.*step)();
    return coding.Text();
}

std::string EncryptCopy(std::string text, std::string_view key) {
    return Encrypt(text, key);
}

std::string DecryptCopy(std::string text, std::string_view key) {
    return Decrypt(text, key);
}

TEST(Coding, ShrinkInvertsStretchForEveryByteAndLength) {
    std::string all;
    for (int c = 0; c < 256; ++c)
        all += static_cast<char>(255 - c);
    for (std::size_t n = 0; n <= all.size(); n += (n < 12 ? 1 : 37)) {
        const std::string plain = all.substr(0, n);
        const std::string stored = Coded(plain, &Coding::Stretch);
        // Three bytes to four characters of the printable range.
        EXPECT_EQ(stored.size(), n + (n + 2) / 3);
        for (char c : stored)
            ASSERT_TRUE(c >= ';' && c <= 'z') << n;
        EXPECT_EQ(Coded(stored, &Coding::Shrink), plain) << n;
    }
}

// Encrypt appends the key field to the caller's text.
TEST(Cipher, StoredLinesMatchIndependentlyComputedOnes) {
    EXPECT_EQ(EncryptCopy("hello world", "Tq3m"), "ilxPxrws;GiyBU`lr>Ba]oZBcX<z<e");
    EXPECT_EQ(EncryptCopy("abc", "LogKey12345"), "Y<K=nsh=abGUCq\\zz[<e");
    std::string line = "ilxPxrws;GiyBU`lr>Ba]oZBcX<z<e";
    EXPECT_EQ(Decrypt(line, kDefinitionKey), "hello world");
    std::string text = "line";
    const std::string stored = Encrypt(text, "Tq3m");
    EXPECT_EQ(text, "lineTq3m      ");
    EXPECT_EQ(stored.size(), 14u + 5u + 2u);
    EXPECT_EQ(stored.substr(stored.size() - 2), "<e");
    EXPECT_EQ(KeyField("0123456789abc"), "0123456789");
}

TEST(Cipher, RoundTripKeepsEveryByteAndTrailingBlanks) {
    std::string plain;
    for (int c = 0; c < 256; ++c)
        plain += static_cast<char>(c);
    const std::string longLine(10000, 'q');  // longer than any cached key stream
    for (const std::string& text :
         {plain, std::string("value with blanks   "), std::string(), longLine})
        EXPECT_EQ(DecryptCopy(EncryptCopy(text, "Tq3m"), "Tq3m"), text);
}

// Without the marker the text stays and the answer is ERR1; with it the marker is cut
// from the caller's text, and a wrong key answers ERR2.
TEST(Cipher, DecryptCutsTheMarkerOrAnswersErr1OrErr2) {
    for (std::string text : {"", "<", "abc", "abc<E", "abc<e "}) {
        const std::string before = text;
        EXPECT_EQ(Decrypt(text, "Tq3m"), "ERR1");
        EXPECT_EQ(text, before);
    }
    std::string text = EncryptCopy("abc", "Tq3m");
    const std::string withoutMarker = text.substr(0, text.size() - 2);
    EXPECT_EQ(DecryptCopy(text, "Tq3n"), "ERR2");
    EXPECT_EQ(DecryptCopy(text, ""), "ERR2");
    EXPECT_EQ(Decrypt(text, "Tq3m"), "abc");
    EXPECT_EQ(text, withoutMarker);
}

TEST(Cipher, ReusedWorkLeavesTheGeneratorAsRecomputingDoes) {
    const std::string a = EncryptCopy("first key's line", "KeyA");
    const std::string b = EncryptCopy("second key's longer line", "KeyB");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(DecryptCopy(a, "KeyA"), "first key's line");
        EXPECT_EQ(DecryptCopy(b, "KeyB"), "second key's longer line");
    }
    const std::uint32_t afterDecrypt = ProcessGenerator().state();

    Coding fresh;  // no earlier work to reuse
    fresh.KeyString(KeyField("KeyB"));
    fresh.Text(b.substr(0, b.size() - 2));
    fresh.Shrink();
    fresh.DoXor();
    EXPECT_EQ(ProcessGenerator().state(), afterDecrypt);

    // Nor does a decryption depend on earlier draws.
    Randomize(12345.0);
    Rnd();
    EXPECT_EQ(DecryptCopy(b, "KeyB"), "second key's longer line");
    std::string plain = "stale contents";
    std::string text = a;
    Decrypt(text, "KeyA", plain);
    EXPECT_EQ(plain, "first key's line");
}

// Texts the cipher never made reach Shrink's failure branch; the handler logs and goes on.
class CipherOnForeignText : public testing::MemoryPlatformTest {
  protected:
    CipherOnForeignText() {
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\Data");
    }
};

TEST_F(CipherOnForeignText, MarkerAloneShortOrControlCharacterTextsAreErr2) {
    std::string marker = "<e";
    EXPECT_EQ(Decrypt(marker, "Tq3m"), "ERR2");
    EXPECT_EQ(marker, "");
    EXPECT_NE(ErrorLog().find("Procedure ( Shrink ) - Module ( Coding )"), std::string::npos);
    for (std::string text : {"a<e", "abcdefghijklmnop<e", "\x01\x02\x03\x04\x05<e",
                             "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t<e"}) {
        EXPECT_EQ(Decrypt(text, "Tq3m"), "ERR2");
    }
    EXPECT_NE(ErrorLog().find("Error [ 5 ]:  Invalid procedure call or argument"),
              std::string::npos);
}

}  // namespace
}  // namespace orvex
