# Installs the build into WORK_DIR/prefix, builds the consumer against it and runs it.
file(REMOVE_RECURSE ${WORK_DIR})
foreach(_step
        "${CMAKE_COMMAND};--install;${BUILD_DIR};--prefix;${WORK_DIR}/prefix"
        "${CMAKE_COMMAND};-S;${SOURCE_DIR};-B;${WORK_DIR}/build;-DCMAKE_PREFIX_PATH=${WORK_DIR}/prefix"
        "${CMAKE_COMMAND};--build;${WORK_DIR}/build")
    execute_process(COMMAND ${_step} RESULT_VARIABLE _result OUTPUT_QUIET)
    if(NOT _result EQUAL 0)
        message(FATAL_ERROR "failed: ${_step}")
    endif()
endforeach()
# Only the public headers are installed: internal ones end in _p.h.
file(GLOB_RECURSE _internal RELATIVE ${WORK_DIR}/prefix ${WORK_DIR}/prefix/include/*_p.h)
if(_internal)
    message(FATAL_ERROR "internal headers installed: ${_internal}")
endif()
set(ENV{LD_LIBRARY_PATH} "${WORK_DIR}/prefix/lib:$ENV{LD_LIBRARY_PATH}")
execute_process(COMMAND ${WORK_DIR}/build/consumer RESULT_VARIABLE _result)
if(NOT _result EQUAL 0)
    message(FATAL_ERROR "the consumer failed")
endif()
