# Writes a text file as a C++ constant: cmake -D NAME= -D FILE= -D OUTPUT= -P embed.cmake
#
# As an array of numbers, because compilers limit the length of a literal. Line ends become those that a
# browser sees: the page's security policy has the hash of the text.

file(READ ${FILE} text)
string(REPLACE "\r\n" "\n" text "${text}")
string(TOLOWER "${text}" lower)
if(FILE MATCHES "\\.js$" AND lower MATCHES "</script|<!--")
  message(FATAL_ERROR "${FILE} would end its script element.")
endif()

string(SHA256 hash "${text}")
string(HEX "${text}" hex)
string(REGEX REPLACE "(................................)" "\\1\n" hex "${hex}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
file(
  WRITE ${OUTPUT}
  "#include \"report/embedded.h\"

namespace trackedcam::report {
namespace {

const unsigned char kBytes[] = {  // NOLINT(modernize-avoid-c-arrays)
${bytes}};

}  // namespace

const EmbeddedFile ${NAME} = {kBytes, sizeof(kBytes), \"${hash}\"};

}  // namespace trackedcam::report
")
