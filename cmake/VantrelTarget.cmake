# vantrel_target(NAME): what every target of the project is compiled with.
function(vantrel_target target)
    target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_compile_definitions(
        ${target}
        PRIVATE QT_NO_CAST_FROM_ASCII
                QT_NO_CAST_TO_ASCII
                QT_NO_KEYWORDS
                QT_USE_QSTRINGBUILDER
                QT_NO_NARROWING_CONVERSIONS_IN_CONNECT)
    target_compile_options(
        ${target}
        PRIVATE -Wall
                -Wextra
                -Wpedantic
                -Wshadow
                -Wconversion
                -Wnon-virtual-dtor
                -Woverloaded-virtual
                $<$<BOOL:${VANTREL_WARNINGS_AS_ERRORS}>:-Werror>)
    if(CMAKE_UNITY_BUILD)
        # Files that are compiled as one see what each keeps to itself; the other presets compile them one by one.
        target_compile_options(${target} PRIVATE -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    endif()
    if(NOT VANTREL_DEVELOPMENT_RESOURCES)
        # What is installed says nothing of the machine that built it.
        target_compile_options(${target} PRIVATE -ffile-prefix-map=${PROJECT_BINARY_DIR}=build
                                                 -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.)
    endif()
    if(CMAKE_CXX_COMPILER_LAUNCHER AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fpch-preprocess)
    endif()
    if(VANTREL_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${VANTREL_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=undefined)
        if(VANTREL_SANITIZE_NOT)
            target_compile_options(${target} PRIVATE -fno-sanitize=${VANTREL_SANITIZE_NOT})
        endif()
        target_link_options(${target} PRIVATE -fsanitize=${VANTREL_SANITIZE})
    endif()
endfunction()

