# One helper per kind of target, so that warnings, Qt settings and output
# folders are decided in one place.

set(VESSA_PYTHON_DIR ${CMAKE_BINARY_DIR}/python)
set(VESSA_HOME_DIR ${CMAKE_BINARY_DIR}/home)

function(vessa_target_defaults target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow
                                             -Wnon-virtual-dtor -Wold-style-cast)
    if(VESSA_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    # Qt's `slots` keyword clashes with a member name in Python's headers.
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS)
    # The sanitized build of the readers goes without Qt.
    if(TARGET Qt6::moc)
        set_target_properties(${target} PROPERTIES AUTOMOC ON)
    endif()
endfunction()

# vessa_library(name SOURCES ... LIBS ...)
function(vessa_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_LIBS})
    vessa_target_defaults(${name})
endfunction()

# vessa_test(name [GUI] [SERIAL] SOURCES ... LIBS ... [LABELS ...])
# Each test runs headless, with its own settings and home folder. GUI tests get
# a QApplication for the whole run. SERIAL tests run with no other test beside them:
# they drive the display's own mouse and keyboard, which other tests' windows would
# take.
function(vessa_test name)
    cmake_parse_arguments(ARG "GUI;SERIAL" "" "SOURCES;LIBS;LABELS" ${ARGN})
    if(ARG_GUI)
        add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/tests/support/gui_test_main.cpp)
        target_link_libraries(${name} PRIVATE ${ARG_LIBS} Qt6::Widgets GTest::gtest GTest::gmock)
    else()
        add_executable(${name} ${ARG_SOURCES})
        target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main GTest::gmock)
    endif()
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    vessa_target_defaults(${name})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    # Every test, and its listing at build time, runs headless with a settings
    # folder, home folder and engine package of the build's own.
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR
        "${CMAKE_COMMAND};-E;env;QT_QPA_PLATFORM=offscreen;XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-config;PYTHONPATH=${VESSA_PYTHON_DIR};VESSA47_HOME=${VESSA_HOME_DIR}/;ALSOFT_DRIVERS=null;${VESSA_TEST_ENVIRONMENT}")
    include(GoogleTest)
    set(labels ${ARG_LABELS})
    if(NOT labels)
        set(labels unit)
    endif()
    set(serial FALSE)
    if(ARG_SERIAL)
        set(serial TRUE)
    endif()
    gtest_discover_tests(${name} PROPERTIES LABELS "${labels}" RUN_SERIAL ${serial}
        DISCOVERY_TIMEOUT 60)
endfunction()

# vessa_benchmark(name SOURCES ... LIBS ...)
function(vessa_benchmark name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} benchmark::benchmark)
    vessa_target_defaults(${name})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()

# Copies a source tree into the build folder, keeping it fresh on every build.
function(vessa_copy_tree target source_dir dest_dir)
    file(GLOB_RECURSE files RELATIVE ${source_dir} CONFIGURE_DEPENDS ${source_dir}/*)
    set(outputs)
    foreach(f IN LISTS files)
        if(f MATCHES "__pycache__|\\.pyc$|CMakeLists\\.txt$")
            continue()
        endif()
        add_custom_command(OUTPUT ${dest_dir}/${f}
            COMMAND ${CMAKE_COMMAND} -E copy_if_different ${source_dir}/${f} ${dest_dir}/${f}
            DEPENDS ${source_dir}/${f} VERBATIM)
        list(APPEND outputs ${dest_dir}/${f})
    endforeach()
    add_custom_target(${target} ALL DEPENDS ${outputs})
endfunction()
