# What `cmake --install` puts where, and the packages that CPack makes of it.
include(GNUInstallDirs)

set(VANTREL_BUNDLED_ADB "" CACHE FILEPATH "An adb to ship inside the program's resources; empty: use the system's")
if(VANTREL_BUNDLED_ADB AND NOT EXISTS "${VANTREL_BUNDLED_ADB}")
    message(FATAL_ERROR "VANTREL_BUNDLED_ADB: there is no ${VANTREL_BUNDLED_ADB}")
endif()

# The day of the version, for the man page and the metainfo. A packager's SOURCE_DATE_EPOCH makes it reproducible.
string(TIMESTAMP VANTREL_RELEASE_DATE "%Y-%m-%d" UTC)
set(VANTREL_IDENTIFIER com.vantrelapp.Vantrel)
set(VANTREL_RESOURCES ${PROJECT_SOURCE_DIR}/src/Resources)
set(VANTREL_GENERATED ${PROJECT_BINARY_DIR}/generated/install)

if(APPLE)
    # A bundle. None of this has been run: there was no Mac to run it on.
    set(VANTREL_BUNDLE_ICON ${VANTREL_GENERATED}/Vantrel.icns)
    set_target_properties(
        vantrel
        PROPERTIES MACOSX_BUNDLE ON
                   OUTPUT_NAME Vantrel
                   MACOSX_BUNDLE_INFO_PLIST ${VANTREL_RESOURCES}/mac/Info.plist.in
                   MACOSX_BUNDLE_GUI_IDENTIFIER ${VANTREL_IDENTIFIER})
    set(CMAKE_OSX_DEPLOYMENT_TARGET 14.0 CACHE STRING "Oldest macOS that the program runs on")
    set(VANTREL_ICONSET ${VANTREL_GENERATED}/Vantrel.iconset)
    file(MAKE_DIRECTORY ${VANTREL_ICONSET})
    foreach(size 16 32 128 256 512)
        math(EXPR twice "${size} * 2")
        list(APPEND VANTREL_ICON_COMMANDS
             COMMAND renderIcon ${VANTREL_RESOURCES}/icon/vantrel.svg ${size} ${VANTREL_ICONSET}/icon_${size}x${size}.png
             COMMAND renderIcon ${VANTREL_RESOURCES}/icon/vantrel.svg ${twice} ${VANTREL_ICONSET}/icon_${size}x${size}@2x.png)
    endforeach()
    add_custom_command(
        OUTPUT ${VANTREL_BUNDLE_ICON}
        ${VANTREL_ICON_COMMANDS}
        COMMAND iconutil -c icns -o ${VANTREL_BUNDLE_ICON} ${VANTREL_ICONSET}
        DEPENDS renderIcon ${VANTREL_RESOURCES}/icon/vantrel.svg)
    target_sources(vantrel PRIVATE ${VANTREL_BUNDLE_ICON})
    set_source_files_properties(${VANTREL_BUNDLE_ICON} TARGET_DIRECTORY vantrel PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
    if(VANTREL_BUNDLED_ADB)
        add_custom_command(
            TARGET vantrel POST_BUILD
            COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_BUNDLE_CONTENT_DIR:vantrel>/Resources/platform-tools
            COMMAND ${CMAKE_COMMAND} -E copy ${VANTREL_BUNDLED_ADB} $<TARGET_BUNDLE_CONTENT_DIR:vantrel>/Resources/platform-tools/adb)
    endif()
    add_custom_command(
        TARGET vantrel POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E make_directory $<TARGET_BUNDLE_CONTENT_DIR:vantrel>/Frameworks
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:vantrel_embedded_pictures>
                $<TARGET_BUNDLE_CONTENT_DIR:vantrel>/Frameworks)
    install(TARGETS vantrel BUNDLE DESTINATION .)
    set(CPACK_GENERATOR DragNDrop)
else()
    set(VANTREL_DATA_DIR ${CMAKE_INSTALL_FULL_DATADIR}/vantrel)
    install(TARGETS vantrel RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    # Where embeddedPicture() looks, on every system.
    install(TARGETS vantrel_embedded_pictures LIBRARY DESTINATION lib/vantrel)
    add_dependencies(vantrel vantrel_embedded_pictures)
    install(FILES ${VANTREL_RESOURCES}/desktop/${VANTREL_IDENTIFIER}.desktop
            DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
    configure_file(${VANTREL_RESOURCES}/desktop/${VANTREL_IDENTIFIER}.metainfo.xml.in
                   ${VANTREL_GENERATED}/${VANTREL_IDENTIFIER}.metainfo.xml @ONLY)
    install(FILES ${VANTREL_GENERATED}/${VANTREL_IDENTIFIER}.metainfo.xml
            DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
    install(FILES ${VANTREL_RESOURCES}/desktop/51-vantrel-android.rules
            DESTINATION ${CMAKE_INSTALL_DATADIR}/vantrel/udev)
    install(FILES ${VANTREL_RESOURCES}/desktop/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vantrel)
    if(VANTREL_BUNDLED_ADB)
        install(PROGRAMS ${VANTREL_BUNDLED_ADB} DESTINATION ${CMAKE_INSTALL_DATADIR}/vantrel/platform-tools RENAME adb)
    endif()

    # The manual page and the changelog, compressed as packages want them and without a time stamp.
    string(TIMESTAMP VANTREL_CHANGELOG_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
    configure_file(${VANTREL_RESOURCES}/desktop/vantrel.1.in ${VANTREL_GENERATED}/vantrel.1 @ONLY)
    configure_file(${VANTREL_RESOURCES}/desktop/changelog.in ${VANTREL_GENERATED}/changelog.Debian @ONLY)
    find_program(GZIP gzip REQUIRED)
    foreach(document vantrel.1 changelog.Debian)
        add_custom_command(
            OUTPUT ${VANTREL_GENERATED}/${document}.gz
            COMMAND ${GZIP} -9 -n -k -f ${VANTREL_GENERATED}/${document}
            DEPENDS ${VANTREL_GENERATED}/${document})
        list(APPEND VANTREL_DOCUMENTS ${VANTREL_GENERATED}/${document}.gz)
    endforeach()
    install(FILES ${VANTREL_GENERATED}/vantrel.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${VANTREL_GENERATED}/changelog.Debian.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/vantrel)

    # The icon: the drawing itself, and the sizes that desktops show without drawing.
    install(FILES ${VANTREL_RESOURCES}/icon/vantrel.svg
            DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps RENAME ${VANTREL_IDENTIFIER}.svg)
    foreach(size 16 22 24 32 48 64 128 256 512)
        set(icon ${VANTREL_GENERATED}/icon-${size}.png)
        add_custom_command(
            OUTPUT ${icon}
            COMMAND renderIcon ${VANTREL_RESOURCES}/icon/vantrel.svg ${size} ${icon}
            DEPENDS renderIcon ${VANTREL_RESOURCES}/icon/vantrel.svg)
        list(APPEND VANTREL_ICONS ${icon})
        install(FILES ${icon} DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
                RENAME ${VANTREL_IDENTIFIER}.png)
    endforeach()
    add_custom_target(vantrel_install_files DEPENDS ${VANTREL_ICONS} ${VANTREL_DOCUMENTS})
    add_dependencies(vantrel vantrel_install_files) # whoever builds the program can install it
    set(CPACK_GENERATOR DEB)
endif()

set(CPACK_PACKAGE_NAME vantrel)
set(CPACK_PACKAGE_VENDOR "The Vantrel authors")
set(CPACK_PACKAGE_CONTACT "The Vantrel authors <feedback@vantrelapp.com>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://vantrelapp.com)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "copy files between a computer and an Android phone")
set(CPACK_PACKAGE_DESCRIPTION
    "Vantrel shows the storage of an Android phone beside the files of this\ncomputer and copies between them, either way. The phone is connected by USB,\nwith USB debugging turned on. Originals are never moved or deleted.")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${VANTREL_BUILD_NUMBER})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-inter, fonts-noto-color-emoji, qt6-image-formats-plugins, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "android-sdk-platform-tools-common, tumbler")
set(CPACK_DEBIAN_PACKAGE_DEPENDS xdg-utils)
if(NOT VANTREL_BUNDLED_ADB)
    string(APPEND CPACK_DEBIAN_PACKAGE_DEPENDS ", adb")
endif()
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
include(CPack)
