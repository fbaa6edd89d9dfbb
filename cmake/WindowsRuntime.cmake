# windows_runtime on Windows: the SDK's C++/WinRT headers and its import library for apps. System headers, so that
# warnings-as-errors speak about our own sources only.

set(sdk_architecture "${ZARVIK_UWP_ARCHITECTURE}")
add_library(windows_runtime INTERFACE)
target_include_directories(windows_runtime SYSTEM INTERFACE "${ZARVIK_WINDOWS}/include")
# The projection of our own component.
target_include_directories(windows_runtime INTERFACE "${PROJECT_SOURCE_DIR}/src/bridge/projection")
target_compile_definitions(windows_runtime INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
target_link_libraries(
    windows_runtime
    INTERFACE "${ZARVIK_WINDOWS}/sdk/cpp.${sdk_architecture}/um/${sdk_architecture}/WindowsApp.lib"
)

# A Windows DLL carries its plain name.
set(CMAKE_SHARED_LIBRARY_PREFIX "")

# Completes a DLL after each link, so that an app may load it.
find_program(ZARVIK_NODE node REQUIRED)
function(windows_runtime_finish target)
    add_custom_command(
        TARGET ${target} POST_BUILD
        COMMAND "${ZARVIK_NODE}" "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/windows/finishImage.mjs"
                "$<TARGET_FILE:${target}>"
        VERBATIM
    )
endfunction()
