# SPDX-License-Identifier: Apache-2.0
#
# zav_embed_text(<source> TEXTS <name> <file>... [<name> <file>...]...)
#
# Makes the C++ source <source> in the current binary folder. It defines for each name (a word without a dot) the
# function `std::string_view zav::<name>()`: the bytes of the files, one file after the other. As a script
# (cmake -DSOURCE=... -DTEXTS=... -P) this file writes that source.

if(CMAKE_SCRIPT_MODE_FILE)
    set(text "#include <string_view>\n\nnamespace zav {\n")
    set(name)
    macro(end_text)
        if(name)
            string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
            string(REGEX REPLACE "(${line_of_bytes})" "\\1\n" bytes "${bytes}")
            string(APPEND text "\nstd::string_view ${name}();\nstd::string_view ${name}()\n{\n"
                "    static const unsigned char bytes[] = {\n${bytes}};\n"
                "    return {reinterpret_cast<const char *>(bytes), sizeof bytes};\n}\n")
        endif()
    endmacro()
    string(REPEAT "." 100 line_of_bytes)
    foreach(word IN LISTS TEXTS)
        if(NOT word MATCHES "\\.")
            end_text()
            set(name "${word}")
            set(hex)
        else()
            file(READ "${word}" file_hex HEX)
            string(APPEND hex "${file_hex}")
        endif()
    endforeach()
    end_text()
    file(WRITE "${SOURCE}" "${text}\n} // namespace zav\n")
    return()
endif()

set(ZAV_EMBED_SCRIPT "${CMAKE_CURRENT_LIST_FILE}")

function(zav_embed_text source)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "TEXTS")
    set(words)
    set(files)
    foreach(word IN LISTS arg_TEXTS)
        if(word MATCHES "\\.")
            set(word "${CMAKE_CURRENT_SOURCE_DIR}/${word}")
            list(APPEND files "${word}")
        endif()
        list(APPEND words "${word}")
    endforeach()
    add_custom_command(
        OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${source}"
        COMMAND "${CMAKE_COMMAND}" "-DSOURCE=${CMAKE_CURRENT_BINARY_DIR}/${source}" "-DTEXTS=${words}"
            -P "${ZAV_EMBED_SCRIPT}"
        DEPENDS ${files} "${ZAV_EMBED_SCRIPT}"
        VERBATIM)
endfunction()
