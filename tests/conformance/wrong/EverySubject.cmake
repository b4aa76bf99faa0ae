# cmake -DCHECKER=PROGRAM "-DFAILING=ID;..." -P EverySubject.cmake
# Fails and names the subjects none of whose checks is among FAILING.
cmake_minimum_required(VERSION 3.25)
execute_process(COMMAND "${CHECKER}" --list OUTPUT_VARIABLE lines COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," lines "${lines}") # sentences have semicolons, which would part them
string(REGEX MATCHALL "[^\n]+" lines "${lines}")
set(missing "")
foreach(line IN LISTS lines)
    string(REGEX MATCH "^[^ .]+" subject "${line}")
    if(NOT FAILING MATCHES "(^|;)${subject}([.]|;|$)")
        list(APPEND missing "${subject}")
    endif()
endforeach()
list(REMOVE_DUPLICATES missing)
if(NOT lines OR missing)
    message(FATAL_ERROR "no wrong plug-in fails a check of: ${missing}")
endif()
