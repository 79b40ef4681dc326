# Run by CTest: installs the build in BUILD_DIR into a fresh prefix, then configures, builds and
# runs the project in consumer/ against that prefix, by CMake package and by pkg-config.

function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --config ${CONFIG} --prefix ${prefix})

if(NOT EXISTS ${prefix}/${LIBRARY} OR NOT LIBRARY MATCHES "libktManipulator\\.so\\.3$")
  message(FATAL_ERROR "No libktManipulator.so.3 was installed (soname file: ${LIBRARY})")
endif()

# A package that names the folder it was installed into (it lies in BUILD_DIR) could not be moved.
file(GLOB_RECURSE texts ${prefix}/*.cmake ${prefix}/*.pc)
foreach(text IN LISTS texts)
  file(READ ${text} content)
  string(FIND "${content}" ${BUILD_DIR} at)
  if(NOT at EQUAL -1)
    message(FATAL_ERROR "${text} names ${BUILD_DIR}")
  endif()
endforeach()

foreach(way cmake pkg-config)
  set(build ${WORK_DIR}/${way})
  run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${build} -G ${GENERATOR}
    -D CMAKE_BUILD_TYPE=${CONFIG}
    -D CMAKE_CXX_COMPILER=${COMPILER}
    -D CMAKE_CXX_FLAGS=${FLAGS}
    -D CMAKE_PREFIX_PATH=${prefix}
    -D FIND_BY=${way})
  run(${CMAKE_COMMAND} --build ${build} --config ${CONFIG})
  run(${build}/consumer ${CMAKE_CURRENT_LIST_DIR}/../../examples/models)
endforeach()
