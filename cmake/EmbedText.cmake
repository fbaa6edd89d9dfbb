# zarvik_embed_text(LIBRARY FOLDER TEXT SOURCE) makes the static library of a text that FOLDER/build/main.mjs builds:
# the file TEXT, and the C++ source SOURCE that holds it. Both are made in the current binary folder. The tool itself
# lists the files that it read, in the dependency file.

find_program(ZARVIK_NODE node REQUIRED)

function(zarvik_embed_text library folder text source)
    set(text ${CMAKE_CURRENT_BINARY_DIR}/${text})
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${source})
    file(GLOB tool CONFIGURE_DEPENDS ${folder}/build/*.mjs ${folder}/package*.json ${folder}/tsconfig.json)
    add_custom_command(
        OUTPUT ${source}
        BYPRODUCTS ${text}
        COMMAND ${PROJECT_SOURCE_DIR}/scripts/setup-packages.sh ${folder}
        COMMAND ${ZARVIK_NODE} build/main.mjs ${text} ${source} ${source}.d
        DEPENDS ${tool} ${PROJECT_SOURCE_DIR}/cmake/embedText.mjs
        DEPFILE ${source}.d
        WORKING_DIRECTORY ${folder}
        COMMENT "Building ${library}"
        VERBATIM
    )
    add_library(${library} STATIC ${source})
    target_include_directories(${library} PRIVATE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${library} PRIVATE project_options)
endfunction()
