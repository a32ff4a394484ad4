# Helpers for the folder CMakeLists: GoogleTest executables run under Wine, and
# message tables compiled with windmc into executables or resource-only DLLs.

# traywell_add_test(NAME <name> SOURCES <src>... [LIBS <lib>...]
#                   [TIMEOUT <seconds>] [ARGS <arg>...] [LABELS <label>...]
#                   [LOCKS <resource>...])
#
# Builds a GoogleTest (and GoogleMock) executable and registers it as one ctest
# test, run through the emulator. ctest kills it after TIMEOUT seconds (300 by
# default), so a test that hangs fails instead of stalling the run. Tests that
# name the same lock never run at once: "desktop" for those that show windows,
# take the focus or type (they share one display), "session_agent" for those
# that use the session's agent pipe and key store.
function(traywell_add_test)
    cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;TIMEOUT" "SOURCES;LIBS;ARGS;LABELS;LOCKS")
    if(NOT arg_NAME OR NOT arg_SOURCES)
        message(FATAL_ERROR "traywell_add_test needs NAME and SOURCES")
    endif()
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "traywell_add_test: unknown arguments ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 300)
    endif()

    add_executable(${arg_NAME} ${arg_SOURCES})
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBS} gmock_main)
    add_test(NAME ${arg_NAME} COMMAND ${arg_NAME} --gtest_color=no ${arg_ARGS})
    set_tests_properties(${arg_NAME} PROPERTIES TIMEOUT ${arg_TIMEOUT})
    if(arg_LABELS)
        set_tests_properties(${arg_NAME} PROPERTIES LABELS "${arg_LABELS}")
    endif()
    if(arg_LOCKS)
        set_tests_properties(${arg_NAME} PROPERTIES RESOURCE_LOCK "${arg_LOCKS}")
    endif()
endfunction()

# traywell_add_program(NAME <name> [WIN32] SOURCES <src>... [LIBS <lib>...])
#
# A program of the build (the tray program, a tool, a helper that tests or
# benchmarks start) with a wide entry point, wmain or wWinMain, which MinGW
# links only with -municode.
function(traywell_add_program)
    cmake_parse_arguments(PARSE_ARGV 0 arg "WIN32" "NAME" "SOURCES;LIBS")
    if(NOT arg_NAME OR NOT arg_SOURCES OR arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "traywell_add_program needs NAME and SOURCES, and nothing else")
    endif()
    if(arg_WIN32)
        add_executable(${arg_NAME} WIN32 ${arg_SOURCES})
    else()
        add_executable(${arg_NAME} ${arg_SOURCES})
    endif()
    target_link_libraries(${arg_NAME} PRIVATE ${arg_LIBS})
    if(MINGW)
        target_link_options(${arg_NAME} PRIVATE -municode)
    endif()
endfunction()

# traywell_add_message_table(TARGET <target> MC <file.mc> [CUSTOMER] [INCLUDE_DIR_VAR <var>])
#
# Compiles <file.mc> with windmc and links the message table into <target>, an
# executable or a DLL (a static library would drop the unreferenced resource at
# link time). The generated <file>.h with the message ids is on the target's
# include path; INCLUDE_DIR_VAR receives its folder for other targets.
# FormatMessageW only reads RT_MESSAGETABLE resource 1, so a module holds one table.
# CUSTOMER sets the customer bit of every code, as the program's own codes have it.
function(traywell_add_message_table)
    cmake_parse_arguments(PARSE_ARGV 0 arg "CUSTOMER" "TARGET;MC;INCLUDE_DIR_VAR" "")
    if(NOT arg_TARGET OR NOT arg_MC)
        message(FATAL_ERROR "traywell_add_message_table needs TARGET and MC")
    endif()
    if(NOT TARGET ${arg_TARGET})
        message(FATAL_ERROR "traywell_add_message_table: no target ${arg_TARGET}")
    endif()
    get_target_property(type ${arg_TARGET} TYPE)
    if(NOT type MATCHES "^(EXECUTABLE|SHARED_LIBRARY|MODULE_LIBRARY)$")
        message(FATAL_ERROR
            "traywell_add_message_table: ${arg_TARGET} is a ${type}; a message table "
            "must go into an executable or a DLL")
    endif()
    get_target_property(has_table ${arg_TARGET} TRAYWELL_MESSAGE_TABLE)
    if(has_table)
        message(FATAL_ERROR
            "traywell_add_message_table: ${arg_TARGET} already holds ${has_table}; "
            "FormatMessageW would see only one table")
    endif()

    get_filename_component(mc ${arg_MC} ABSOLUTE)
    get_filename_component(base ${mc} NAME_WE)
    set(out ${CMAKE_CURRENT_BINARY_DIR}/${arg_TARGET}_messages)
    set(customer_flag)
    if(arg_CUSTOMER)
        set(customer_flag -c)
    endif()
    # -U stores the texts as UTF-16, the form FormatMessageW returns without conversion.
    # The binary files beside the .rc are named after the .mc's languages
    # (MSG00001.bin for the default English), so only the .h and .rc are listed.
    add_custom_command(
        OUTPUT ${out}/${base}.h ${out}/${base}.rc
        COMMAND ${CMAKE_COMMAND} -E make_directory ${out}
        COMMAND ${CMAKE_MC_COMPILER} -U ${customer_flag} -h ${out} -r ${out} ${mc}
        DEPENDS ${mc}
        COMMENT "Compiling message table ${base}.mc for ${arg_TARGET}"
        VERBATIM)
    target_sources(${arg_TARGET} PRIVATE ${out}/${base}.rc ${out}/${base}.h)
    # Also lets windres find the .bin files, which the generated .rc names without a folder.
    target_include_directories(${arg_TARGET} PRIVATE ${out})
    set_target_properties(${arg_TARGET} PROPERTIES TRAYWELL_MESSAGE_TABLE ${mc})
    if(arg_INCLUDE_DIR_VAR)
        set(${arg_INCLUDE_DIR_VAR} ${out} PARENT_SCOPE)
    endif()
endfunction()

# traywell_add_message_dll(NAME <name> MC <file.mc> [CUSTOMER] [INCLUDE_DIR_VAR <var>])
#
# Builds <name>.dll in the bin folder: a resource-only DLL with no code and no
# entry point, holding the message table of <file.mc>. Load it with
# LoadLibraryExW(..., LOAD_LIBRARY_AS_DATAFILE) and pass the handle to
# FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE, ...).
function(traywell_add_message_dll)
    cmake_parse_arguments(PARSE_ARGV 0 arg "CUSTOMER" "NAME;MC;INCLUDE_DIR_VAR" "")
    if(NOT arg_NAME OR NOT arg_MC)
        message(FATAL_ERROR "traywell_add_message_dll needs NAME and MC")
    endif()
    set(customer)
    if(arg_CUSTOMER)
        set(customer CUSTOMER)
    endif()
    add_library(${arg_NAME} MODULE)
    traywell_add_message_table(TARGET ${arg_NAME} MC ${arg_MC} ${customer} INCLUDE_DIR_VAR dir)
    set_target_properties(${arg_NAME} PROPERTIES
        PREFIX ""
        LINKER_LANGUAGE C
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
    # No C runtime and an entry point of 0: the loader has nothing to call.
    target_link_options(${arg_NAME} PRIVATE -nostdlib -nostartfiles -Wl,--entry=0 -s)
    if(arg_INCLUDE_DIR_VAR)
        set(${arg_INCLUDE_DIR_VAR} ${dir} PARENT_SCOPE)
    endif()
endfunction()
