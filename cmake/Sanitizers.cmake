# Compiler and linker flags of the sanitizer legs, chosen by SYSMGT_SANITIZE.
if(SYSMGT_SANITIZE STREQUAL "address")
  set(_san -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(SYSMGT_SANITIZE STREQUAL "thread")
  set(_san -fsanitize=thread -fno-omit-frame-pointer)
elseif(SYSMGT_SANITIZE STREQUAL "fuzzer")
  # The fuzz leg (clang only): coverage for libFuzzer in every object, ASan and
  # UBSan; fuzz targets add -fsanitize=fuzzer at their link (fuzz/CMakeLists.txt).
  set(_san -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
elseif(NOT SYSMGT_SANITIZE STREQUAL "")
  message(FATAL_ERROR "SYSMGT_SANITIZE must be empty, address, thread or fuzzer")
endif()
if(_san)
  add_compile_options(${_san})
  add_link_options(${_san})
  # These legs link every test executable with the runtime in it; lld does
  # that in about a third of the time of the default linker.
  find_program(SYSMGT_LLD ld.lld)
  if(SYSMGT_LLD)
    add_link_options(-fuse-ld=lld)
  endif()
endif()

# Environment every test runs with: leaks and races fail the test.
set(SYSMGT_TEST_ENV
    "ASAN_OPTIONS=detect_leaks=1:abort_on_error=0:halt_on_error=1"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1"
    "TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1")
