# What `cmake --install` lays out: the library with what it loads beside itself, its public header, and a CMake package.
#   find_package(ZarvikOrvella)                           ZarvikOrvella::ZarvikOrvella
#   find_package(ZarvikOrvella COMPONENTS Direct3D11)     and ZarvikOrvella::Direct3D11, the headers of Direct3D

include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(libraryFolder ${CMAKE_INSTALL_LIBDIR}/zarvik-orvella)
set(headerFolder ${CMAKE_INSTALL_INCLUDEDIR}/zarvik-orvella)
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/ZarvikOrvella)
set(exports ${PROJECT_SOURCE_DIR}/src/exports)
set(platform ${PROJECT_SOURCE_DIR}/platform/linux)

install(TARGETS ZarvikOrvella EXPORT ZarvikOrvellaTargets LIBRARY DESTINATION ${libraryFolder})
target_include_directories(ZarvikOrvella INTERFACE $<INSTALL_INTERFACE:${headerFolder}>)
install(TARGETS page_access LIBRARY DESTINATION ${libraryFolder}/page_process)
install(FILES ${exports}/ZarvikOrvella.h ${exports}/ExportTable.inc DESTINATION ${headerFolder})

install(EXPORT ZarvikOrvellaTargets NAMESPACE ZarvikOrvella:: DESTINATION ${packageFolder})
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZarvikOrvellaConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(
    FILES ${CMAKE_CURRENT_LIST_DIR}/ZarvikOrvellaConfig.cmake
          ${CMAKE_CURRENT_BINARY_DIR}/ZarvikOrvellaConfigVersion.cmake
          ${platform}/Direct3D11Headers.cmake
    DESTINATION ${packageFolder}
)
install(FILES ${platform}/include/windows.h ${platform}/include/unknwn.h DESTINATION ${packageFolder}/include)

# The licences of what is inside the library.
file(GLOB viewerNotices CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/src/resources/pdf_viewer/LICENSE* ${PROJECT_SOURCE_DIR}/src/resources/pdf_viewer/NOTICE*)
install(FILES ${viewerNotices} DESTINATION ${CMAKE_INSTALL_DOCDIR}/pdf.js)
