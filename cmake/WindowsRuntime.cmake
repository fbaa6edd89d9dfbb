# windows_runtime on Windows: the SDK's C++/WinRT headers and its import library for apps. System headers, so that
# warnings-as-errors speak about our own sources only.

set(sdk_architecture "${ZARVIK_UWP_ARCHITECTURE}")
add_library(windows_runtime INTERFACE)
target_include_directories(windows_runtime SYSTEM INTERFACE "${ZARVIK_WINDOWS}/include")
# The projection of our own component.
target_include_directories(windows_runtime INTERFACE "${PROJECT_SOURCE_DIR}/src/bridge/projection")
# WINRT_NO_SOURCE_LOCATION: errors would carry the file names of the machine that built this into the DLL.
target_compile_definitions(
    windows_runtime INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN WINRT_NO_SOURCE_LOCATION
)
target_link_libraries(
    windows_runtime
    INTERFACE "${ZARVIK_WINDOWS}/sdk/cpp.${sdk_architecture}/um/${sdk_architecture}/WindowsApp.lib"
)

# A DLL is loaded under a system lock, so our sources leave nothing to be done then.
add_compile_options(-Werror=global-constructors)

# A Windows DLL carries its plain name.
set(CMAKE_SHARED_LIBRARY_PREFIX "")

# The linker takes these from its environment, as Microsoft's does, since the compiler driver has no options for them:
# leave out what nothing uses, mark the image as fit for an app container, write its checksum.
set_property(
    GLOBAL PROPERTY RULE_LAUNCH_LINK
    "${CMAKE_COMMAND} -E env \"LINK=/opt:ref /appcontainer /release\""
)

set(sdkTool ${CMAKE_CURRENT_LIST_DIR}/windows/sdk.sh)
set(versionTemplate ${CMAKE_CURRENT_LIST_DIR}/windows/version.rc.in)

# windows_runtime_sdk_file(target kind input output): has the SDK make a file that the target needs.
function(windows_runtime_sdk_file target kind input output)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -E env "ZARVIK_CACHE=${ZARVIK_CACHE}" ${sdkTool} ${kind} ${input} ${output}
        DEPENDS ${input} ${sdkTool}
        VERBATIM
    )
    target_sources(${target} PRIVATE ${output})
endfunction()

# windows_runtime_finish(target description): gives a DLL its version and installs it, with its debug information in a
# folder apart.
function(windows_runtime_finish target description)
    set(version ${CMAKE_CURRENT_BINARY_DIR}/${target})
    configure_file(${versionTemplate} ${version}.rc @ONLY)
    windows_runtime_sdk_file(${target} resources ${version}.rc ${version}.res)
    set_source_files_properties(${version}.res PROPERTIES EXTERNAL_OBJECT TRUE)

    install(TARGETS ${target} RUNTIME DESTINATION ${pluginFolder})
    install(FILES ${CMAKE_BINARY_DIR}/${target}.pdb DESTINATION ${symbolFolder})
endfunction()

# windows_runtime_metadata(target idl): builds and installs the metadata of a component.
function(windows_runtime_metadata target idl)
    set(metadata ${CMAKE_BINARY_DIR}/${target}.winmd)
    windows_runtime_sdk_file(${target} metadata ${CMAKE_CURRENT_SOURCE_DIR}/${idl} ${metadata})
    install(FILES ${metadata} DESTINATION ${pluginFolder})
endfunction()

include(${CMAKE_CURRENT_LIST_DIR}/WindowsPackage.cmake)
