# RoundTrip.cmake: checks that `orvex defs dump` of a compiled sample gives its source back.
execute_process(COMMAND ${EMULATOR} ${ORVEX} defs dump ${DAT}
  OUTPUT_VARIABLE dumped RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "orvex defs dump ${DAT} failed: ${rc}")
endif()
file(READ ${SOURCE} source)
string(REPLACE "\r\n" "\n" dumped "${dumped}")
string(REPLACE "\r\n" "\n" source "${source}")
if(NOT dumped STREQUAL source)
  message(FATAL_ERROR "dump of ${DAT} differs from ${SOURCE}:\n${dumped}")
endif()
message(STATUS "${DAT}: round trip ok")
