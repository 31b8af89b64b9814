# Precompiled headers, one set for all rooms of a kind: compiling the toolkit's headers for each room again takes longer
# than compiling most rooms. vantrel_precompiled(KIND LIBRARIES... HEADERS...) makes a set.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/generated/empty.cpp CONTENT "int main() { return 0; }\n")
function(vantrel_precompiled kind)
    cmake_parse_arguments(ARG "" "" "LIBRARIES;HEADERS" ${ARGN})
    add_library(vantrel_precompiled_${kind} OBJECT ${PROJECT_BINARY_DIR}/generated/empty.cpp)
    set_target_properties(vantrel_precompiled_${kind} PROPERTIES AUTOMOC OFF)
    target_link_libraries(vantrel_precompiled_${kind} PRIVATE ${ARG_LIBRARIES})
    vantrel_target(vantrel_precompiled_${kind})
    target_precompile_headers(vantrel_precompiled_${kind} PRIVATE ${ARG_HEADERS})
endfunction()

# vantrel_use_precompiled(TARGET KIND): compiles the target with that set, unless that is switched off.
function(vantrel_use_precompiled target kind)
    if(VANTREL_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} REUSE_FROM vantrel_precompiled_${kind})
    endif()
endfunction()

# vantrel_room(NAME [PRECOMPILED KIND] LIBRARIES... SOURCES...): the library vantrel_NAME of one room of src/. It links
# the rooms below it and no others: NAME_links takes the whole of it and does not link when it calls upwards.
function(vantrel_room name)
    cmake_parse_arguments(ARG "" "PRECOMPILED" "LIBRARIES;SOURCES" ${ARGN})
    add_library(vantrel_${name} STATIC ${ARG_SOURCES})
    target_link_libraries(vantrel_${name} PUBLIC ${ARG_LIBRARIES})
    vantrel_target(vantrel_${name})
    if(ARG_PRECOMPILED)
        vantrel_use_precompiled(vantrel_${name} ${ARG_PRECOMPILED})
    endif()
    if(NOT VANTREL_SANITIZE)
        add_executable(${name}_links ${PROJECT_BINARY_DIR}/generated/empty.cpp)
        set_target_properties(${name}_links PROPERTIES AUTOMOC OFF)
        target_link_libraries(${name}_links PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,vantrel_${name}>")
    endif()
endfunction()
