# Header-only libraries from Debian: found natively by their package files; for MinGW the
# header folders are linked into the build tree so that no other host header leaks in.
function(orvex_header_only target header_dir)
  if(NOT TARGET ${target})
    set(dir ${CMAKE_BINARY_DIR}/host-headers/${target})
    get_filename_component(leaf ${header_dir} NAME)
    file(MAKE_DIRECTORY ${dir})
    file(CREATE_LINK ${header_dir} ${dir}/${leaf} SYMBOLIC)
    string(REPLACE "::" "_" lib ${target})
    add_library(${lib} INTERFACE)
    target_include_directories(${lib} SYSTEM INTERFACE ${dir})
    add_library(${target} ALIAS ${lib})
  endif()
endfunction()

if(WIN32)
  orvex_header_only(CLI11::CLI11 /usr/include/CLI)
  orvex_header_only(nlohmann_json::nlohmann_json /usr/include/nlohmann)
else()
  find_package(CLI11 CONFIG REQUIRED)
  find_package(nlohmann_json REQUIRED)
endif()

