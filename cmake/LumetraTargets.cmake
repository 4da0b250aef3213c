# Every target of ours takes its flags from lumetra_flags and its include paths from the rooms
# that it links: a room shows its headers through a folder of links of its own, so a header can
# be included only by targets that link the room it belongs to.

add_library(lumetra_flags INTERFACE)
target_compile_options(lumetra_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  -Wold-style-cast -Wnull-dereference -Werror)
target_compile_definitions(lumetra_flags INTERFACE
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_URL_CAST_FROM_STRING QT_DEPRECATED_WARNINGS
  QT_DISABLE_DEPRECATED_BEFORE=0x050E00)

# Of the debug information a report needs only functions and lines: -g1 compiles faster than -g, to
# files of a third of the size.
if(LUMETRA_SANITIZER STREQUAL "address")
  set(_sanitizer -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer -O1 -g1)
elseif(LUMETRA_SANITIZER STREQUAL "thread")
  set(_sanitizer -fsanitize=thread -O1 -g1)
  target_compile_definitions(lumetra_flags INTERFACE LUMETRA_THREAD_SANITIZER)
elseif(LUMETRA_SANITIZER)
  message(FATAL_ERROR "LUMETRA_SANITIZER is '${LUMETRA_SANITIZER}'; use address or thread.")
endif()
if(_sanitizer)
  # The optimiser's view of instrumented code gives false null-dereference warnings.
  target_compile_options(lumetra_flags INTERFACE ${_sanitizer} -Wno-null-dereference)
  target_link_options(lumetra_flags INTERFACE ${_sanitizer})
endif()
if(LUMETRA_COVERAGE)
  target_compile_options(lumetra_flags INTERFACE --coverage -O0 -g)
  target_link_options(lumetra_flags INTERFACE --coverage)
endif()

# A program that links shared libraries holds only its own code and takes the rooms as they are when
# it starts: after a change in one room, that room alone is linked anew instead of all programs.
if(LUMETRA_SHARED_ROOMS)
  set(_room_kind SHARED)
  set(CMAKE_LINK_DEPENDS_NO_SHARED ON)
  # As strict as with static libraries, where each program would lack what a room forgot to link.
  target_link_options(lumetra_flags INTERFACE -Wl,--no-undefined)
else()
  set(_room_kind STATIC)
endif()

include(LumetraPrecompiledHeaders)

# Where the program is installed: a folder of its own, since it looks for its documents beside itself.
set(LUMETRA_PROGRAM_DESTINATION lib/lumetra)

# lumetra_room(<target> FOLDER <folder> SOURCES <file>... [LINK <target>...])
# A library whose headers are included as "<folder>/<header>".
function(lumetra_room target)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINK" ${ARGN})
  add_library(${target} ${_room_kind} ${ARG_SOURCES})
  set(root ${CMAKE_BINARY_DIR}/rooms/${target})
  file(MAKE_DIRECTORY ${root}/${ARG_FOLDER})
  foreach(source IN LISTS ARG_SOURCES)
    if(source MATCHES "\\.h$")
      file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${source} ${root}/${ARG_FOLDER}/${source}
        SYMBOLIC)
    endif()
  endforeach()
  target_include_directories(${target} PUBLIC ${root})
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE lumetra_flags)
  lumetra_precompile(${target})
endfunction()

# Tests of flows whose limits of 100 to 300 ms are the application's own: what runs beside them must
# not use them up. They come first, beside each other; all tests but those that only wait begin
# behind them.
set(LUMETRA_HURRIED_TESTS
  gui_serial gui_serviceserial tst_emulator_pty tst_interfacesearch tst_serialport
  tst_setup_serialflow)

# lumetra_test(<name> [ONE_THREAD] [ONLY_WAITS] SOURCES <file>... [LINK <target>...] [TIMEOUT <seconds>]
#   [RUNNER <word>...])
# A Qt Test executable, run headless with a home of its own; by the command RUNNER if there is one.
# One that skips in initTestCase, for want of what all of its tests need, counts as skipped; so does
# one whose RUNNER returns 77. With ONE_THREAD there is nothing in it for the thread sanitizer to
# see, and its build leaves the test out. With ONLY_WAITS it needs so little of a processor that it
# may run beside LUMETRA_HURRIED_TESTS.
function(lumetra_test name)
  cmake_parse_arguments(ARG "ONE_THREAD;ONLY_WAITS" "TIMEOUT" "SOURCES;LINK;RUNNER" ${ARGN})
  if(ARG_ONE_THREAD AND LUMETRA_SANITIZER STREQUAL "thread")
    return()
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} lumetra_flags Qt5::Test)
  lumetra_precompile(${name})
  add_test(NAME ${name} COMMAND ${ARG_RUNNER} $<TARGET_FILE:${name}>)
  set(home ${CMAKE_BINARY_DIR}/homes/${name})
  file(MAKE_DIRECTORY ${home})
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${ARG_TIMEOUT}
    SKIP_RETURN_CODE 77
    SKIP_REGULAR_EXPRESSION "SKIP   : [A-Za-z]+::initTestCase"
    ENVIRONMENT "${LUMETRA_TEST_ENVIRONMENT};HOME=${home}")
  if(name IN_LIST LUMETRA_HURRIED_TESTS)
    lumetra_starts_early(${name})
  elseif(NOT ARG_ONLY_WAITS)
    lumetra_begins_later(${name})
  endif()
endfunction()

# Qt complains about a runtime folder that others may look into.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/homes)
file(CHMOD ${CMAKE_BINARY_DIR}/homes PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)

# A test's RUNNER may load a library of its own before that of the sanitizer.
set(LUMETRA_TEST_ENVIRONMENT
  QT_QPA_PLATFORM=offscreen
  QT_FONT_DPI=96
  QT_SCALE_FACTOR=1
  QT_STYLE_OVERRIDE=Fusion
  LC_ALL=C.UTF-8
  XDG_RUNTIME_DIR=${CMAKE_BINARY_DIR}/homes
  "ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:verify_asan_link_order=0"
  "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0"
  "UBSAN_OPTIONS=print_stacktrace=1"
  "TSAN_OPTIONS=ignore_noninstrumented_modules=1 exitcode=66 second_deadlock_stack=1")

# lumetra_begins_later(<test>...)
# Behind LUMETRA_HURRIED_TESTS, as far as these run at all.
function(lumetra_begins_later)
  set_tests_properties(${ARGN} PROPERTIES DEPENDS "${LUMETRA_HURRIED_TESTS}")
endfunction()

# lumetra_starts_early(<test>...)
# For tests that take longest: begun last, one of them would be waited for alone.
function(lumetra_starts_early)
  set_tests_properties(${ARGN} PROPERTIES COST 100)
endfunction()
