# Runs PROGRAM with ARGUMENTS (separated by "|") and INPUT on its standard input;
# fails unless it succeeds and writes exactly what is in EXPECTED.
string(REPLACE "|" ";" ARGUMENTS "${ARGUMENTS}")
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS}
    INPUT_FILE ${INPUT} OUTPUT_FILE ${OUTPUT} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${PROGRAM}: ended with ${status}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${OUTPUT} ${EXPECTED}
    RESULT_VARIABLE different)
if(different)
    message(FATAL_ERROR "${OUTPUT} differs from ${EXPECTED}")
endif()
