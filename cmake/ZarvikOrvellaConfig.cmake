# See LinuxPackage.cmake of the project for what this offers.

include(${CMAKE_CURRENT_LIST_DIR}/ZarvikOrvellaTargets.cmake)

if("Direct3D11" IN_LIST ZarvikOrvella_FIND_COMPONENTS AND NOT TARGET ZarvikOrvella::Direct3D11)
    include(${CMAKE_CURRENT_LIST_DIR}/Direct3D11Headers.cmake)
    add_library(ZarvikOrvella::Direct3D11 ALIAS d3d11_headers)
    set(ZarvikOrvella_Direct3D11_FOUND TRUE)
endif()

foreach(component IN LISTS ZarvikOrvella_FIND_COMPONENTS)
    if(ZarvikOrvella_FIND_REQUIRED_${component} AND NOT ZarvikOrvella_${component}_FOUND)
        set(ZarvikOrvella_FOUND FALSE)
        set(ZarvikOrvella_NOT_FOUND_MESSAGE "ZarvikOrvella has no component ${component}.")
    endif()
endforeach()
