# d3d11_headers: the true Direct3D 11 headers (vtable slots, GUIDs) for native code, from mingw-w64's text.
#
# mingw-w64's include folder cannot be on the include path: its windows.h and C library headers would shadow
# ours. So the build folder gets links to just the Direct3D and DXGI headers, beside stand-ins for the headers
# that those include but need nothing from. windows.h and unknwn.h are this library's own.

find_path(MINGW_D3D11_INCLUDE_DIR d3d11.h
    HINTS /usr/share/mingw-w64/include
    DOC "mingw-w64's include folder (Debian: mingw-w64-common)"
    NO_DEFAULT_PATH)
if(NOT MINGW_D3D11_INCLUDE_DIR)
    message(FATAL_ERROR "d3d11.h was not found. Install mingw-w64-common, or set MINGW_D3D11_INCLUDE_DIR.")
endif()

set(d3d11_header_dir ${CMAKE_CURRENT_BINARY_DIR}/d3d11_headers)
file(MAKE_DIRECTORY ${d3d11_header_dir})
foreach(header IN ITEMS d3d11.h d3dcommon.h dxgi.h dxgicommon.h dxgiformat.h dxgitype.h)
    file(CREATE_LINK ${MINGW_D3D11_INCLUDE_DIR}/${header} ${d3d11_header_dir}/${header} SYMBOLIC)
endforeach()
foreach(header IN ITEMS rpc.h rpcndr.h ole2.h ocidl.h
        d3d10_1.h d3d10misc.h d3d10shader.h d3d10effect.h d3d10_1shader.h)
    file(CONFIGURE OUTPUT ${d3d11_header_dir}/${header} CONTENT "#pragma once\n")
endforeach()
file(CONFIGURE OUTPUT ${d3d11_header_dir}/oaidl.h CONTENT "#pragma once\n#include <unknwn.h>\n")

add_library(d3d11_headers INTERFACE)
target_include_directories(d3d11_headers INTERFACE ${CMAKE_CURRENT_LIST_DIR}/include)
target_include_directories(d3d11_headers SYSTEM INTERFACE ${d3d11_header_dir})
target_compile_definitions(d3d11_headers INTERFACE D3D11_IGNORE_SDK_LAYERS)
# A COM object may be implemented in any language: its vtable carries no C++ type information to check.
target_compile_options(d3d11_headers INTERFACE -fno-sanitize=vptr)
