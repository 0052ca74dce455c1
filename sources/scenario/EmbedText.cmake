# Writes a C++ source that holds the text of a file as Sources::<SYMBOL>.
# Usage: cmake -DINPUT=<file> -DOUTPUT=<source> -DHEADER=<include> -DSYMBOL=<name> -P EmbedText.cmake
file(READ "${INPUT}" text)
if(text MATCHES "\\)embedded\"")
  message(FATAL_ERROR "${INPUT} contains the raw-string delimiter )embedded\"")
endif()
file(WRITE "${OUTPUT}" "// Generated from ${INPUT}; edit that file instead.
#include \"${HEADER}\"

namespace Sources {

const std::string_view ${SYMBOL} = R\"embedded(${text})embedded\";

}  // namespace Sources
")
