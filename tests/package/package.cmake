# Installs the build into WORK_DIR/prefix, builds the consumer against it with CMake and with
# pkg-config, and runs both.
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
set(_consumers ${WORK_DIR}/build/consumer)
# The same program built with pkg-config: the .pc files find the prefix from where they lie.
if(PKG_CONFIG AND CXX)
    set(ENV{PKG_CONFIG_PATH} "${WORK_DIR}/prefix/lib/pkgconfig")
    execute_process(COMMAND ${PKG_CONFIG} --cflags --libs zelkon-test
                    OUTPUT_VARIABLE _flags OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE _result)
    separate_arguments(_flags UNIX_COMMAND "${_flags}")
    execute_process(COMMAND ${CXX} -std=c++20 -fPIC ${SOURCE_DIR}/main.cpp -o ${WORK_DIR}/pc-consumer
                            ${_flags} RESULT_VARIABLE _built)
    if(NOT _result EQUAL 0 OR NOT _built EQUAL 0)
        message(FATAL_ERROR "the consumer does not build with pkg-config")
    endif()
    list(APPEND _consumers ${WORK_DIR}/pc-consumer)
endif()
foreach(_consumer IN LISTS _consumers)
    execute_process(COMMAND ${_consumer} RESULT_VARIABLE _result)
    if(NOT _result EQUAL 0)
        message(FATAL_ERROR "${_consumer} failed")
    endif()
endforeach()
