# Builds one case of the declaration templates and judges the build's output: a refused type
# must make exactly one error, which matches EXPECT; a case without EXPECT must build.
# cmake -DBUILD_DIR=... -DTARGET=... [-DEXPECT=regex] -P CheckRefusal.cmake
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD_DIR} --target ${TARGET}
                RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
if(NOT DEFINED EXPECT)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${TARGET} should build:\n${output}")
  endif()
  return()
endif()
if(result EQUAL 0)
  message(FATAL_ERROR "${TARGET} built, but its declaration should be refused")
endif()
string(REGEX MATCHALL "error:" errors "${output}")
list(LENGTH errors count)
if(NOT count EQUAL 1 OR NOT output MATCHES "${EXPECT}")
  message(FATAL_ERROR "${TARGET}: expected one error matching '${EXPECT}', got ${count}:\n${output}")
endif()
