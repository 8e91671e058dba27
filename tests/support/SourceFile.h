// SourceFile.h: the bytes of a file of the source tree, such as shipped data or test data.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace orvex::testing {

// Empty when the file cannot be read.
inline std::string ReadSourceFile(const std::string& relative) {
    std::ifstream in(std::string(ORVEX_SOURCE_DIR) + "/" + relative, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace orvex::testing
