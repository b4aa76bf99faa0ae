# cmake -DCHECKER=PROGRAM "-DFAILING=ID;..." -P EveryCheck.cmake
# Fails and names the checks that are not among FAILING.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND "${CHECKER}" --list OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," lines "${lines}") # sentences have semicolons, which would part them
string(REGEX MATCHALL "[^\n]+" lines "${lines}")
set(missing "")
foreach(line IN LISTS lines)
    string(REGEX MATCH "^[^ ]+" id "${line}")
    if(NOT id IN_LIST FAILING)
        list(APPEND missing "${id}")
    endif()
endforeach()
if(NOT lines OR missing)
    message(FATAL_ERROR "no wrong plug-in fails: ${missing}")
endif()
