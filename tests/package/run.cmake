# Installs BUILD_DIR into WORK_DIR, builds the outside program against it, and runs it. The program is built with what
# built the library: a machine that has ninja need not have make.
file(REMOVE_RECURSE ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${ARGV}\n${output}")
  endif()
endfunction()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/installed)
function(build_against_it source build)
  run(${CMAKE_COMMAND} -S ${source} -B ${build} -G ${GENERATOR} -DCMAKE_MAKE_PROGRAM=${MAKE_PROGRAM}
      -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_CXX_FLAGS=${CXX_FLAGS} -DCMAKE_PREFIX_PATH=${WORK_DIR}/installed
      -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${build})
endfunction()

build_against_it(${SOURCE_DIR} ${WORK_DIR}/build)
run(${WORK_DIR}/build/outside ${WORK_DIR}/out.bmp)

# The examples, on the sample: calibrated, corrected as a stream, and read in plain C.
set(root ${SOURCE_DIR}/../..)
set(chart ${root}/samples/Tonewright/Images/chart.bmp)
build_against_it(${root}/examples ${WORK_DIR}/examples)
run(${WORK_DIR}/examples/calibrate_picture ${chart} ${WORK_DIR}/camera.ccor)
execute_process(COMMAND ${WORK_DIR}/examples/read_ccor ${WORK_DIR}/camera.ccor OUTPUT_VARIABLE rows RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT rows MATCHES "^4 terms\n[^\n]+\n[^\n]+\n[^\n]+\n$")
  message(FATAL_ERROR "read_ccor: ${rows}")
endif()
run(${WORK_DIR}/installed/bin/tonewright calibrate ${chart} --parameters ${WORK_DIR}/camera.twkp)
if(PYTHON)
  file(GLOB packages ${WORK_DIR}/installed/lib/python3*/dist-packages)
  file(COPY ${chart} DESTINATION ${WORK_DIR}/python)
  run(${CMAKE_COMMAND} -E env PYTHONPATH=${packages} ${PYTHON} -B ${root}/examples/calibrate_from_python.py
      ${WORK_DIR}/python/chart.bmp ${WORK_DIR}/python/chart.bmp)
  if(NOT EXISTS ${WORK_DIR}/python/chart.ccor OR NOT EXISTS ${WORK_DIR}/python/chart.corrected.bmp)
    message(FATAL_ERROR "calibrate_from_python.py wrote nothing")
  endif()
endif()
string(REPEAT "abc0" 12 frames)  # two frames of 3 x 2 pixels
file(WRITE ${WORK_DIR}/frames.bgr0 "${frames}")
execute_process(COMMAND ${WORK_DIR}/examples/correct_stream ${WORK_DIR}/camera.twkp 3 2
                INPUT_FILE ${WORK_DIR}/frames.bgr0 OUTPUT_FILE ${WORK_DIR}/corrected.bgr0
                ERROR_VARIABLE count RESULT_VARIABLE result)
file(SIZE ${WORK_DIR}/corrected.bgr0 size)
if(NOT result EQUAL 0 OR NOT size EQUAL 48 OR NOT count MATCHES "2 frames")
  message(FATAL_ERROR "correct_stream: ${count}, ${size} bytes")
endif()
