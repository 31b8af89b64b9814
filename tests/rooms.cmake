# One executable per room of src/, from the ground up; then what crosses all of them.
vantrel_test(RecordsTests LIBRARIES vantrel_records SOURCES RecordsTests.cpp)
vantrel_test(NetworkTests LIBRARIES vantrel_network local_http_server SOURCES NetworkTests.cpp)
vantrel_test(AnalyticsTests LIBRARIES vantrel_analytics local_http_server SOURCES AnalyticsTests.cpp)
vantrel_test(ADBTests LIBRARIES vantrel_adb demo_phone_fixture SOURCES ADBTextTests.cpp ADBClientTests.cpp)
vantrel_test(MacFilesTests LIBRARIES vantrel_macfiles SOURCES MacFilesTests.cpp)
vantrel_gui_test(ThumbnailTests LIBRARIES vantrel_thumbnails vantrel_state demo_phone_fixture SOURCES ThumbnailTests.cpp)
vantrel_gui_test(KitTests LIBRARIES vantrel_kit SOURCES KitTests.cpp)
vantrel_test(TransfersTests LIBRARIES vantrel_state demo_phone_fixture SOURCES TransferTests.cpp CopyTests.cpp
                                                                             ComputerCopyTests.cpp QueueFileTests.cpp)
vantrel_test(StateTests LIBRARIES vantrel_state demo_phone_fixture
             SOURCES AppStateTests.cpp PaneStateTests.cpp PhoneWatchTests.cpp)
vantrel_gui_test(ViewsTests LIBRARIES vantrel_views demo_phone_fixture
                 SOURCES AccessibilityTests.cpp FileRowTests.cpp PaneTests.cpp QueueTests.cpp SidebarTests.cpp)
# A screen reader is told things only while there is one. Only the toolkit's own headers let a test pretend.
find_path(VANTREL_QPA qpa/qplatformaccessibility.h PATHS ${Qt6Gui_PRIVATE_INCLUDE_DIRS} NO_DEFAULT_PATH)
if(VANTREL_QPA)
    target_link_libraries(ViewsTests PRIVATE Qt6::GuiPrivate)
    target_compile_definitions(ViewsTests PRIVATE VANTREL_HAS_QPA)
endif()
vantrel_test_at_3x(ViewsTests *geometry*:*ShareTheWidth*:*headersStand*:*hasItsPlaces*:*aLongMessage*)
vantrel_gui_test(SystemTests LIBRARIES vantrel_app_system SOURCES SettingsTests.cpp)
vantrel_gui_test(UpdatesTests LIBRARIES vantrel_app_updates local_http_server SOURCES UpdaterTests.cpp)
vantrel_gui_test(SheetsTests LIBRARIES vantrel_app_window SOURCES AboutTests.cpp support/OpenedAddresses.h)
set_target_properties(SheetsTests PROPERTIES AUTOMOC ON)
vantrel_gui_test(WindowTests LIBRARIES vantrel_app_window demo_phone_fixture
                 SOURCES WindowTests.cpp ChromeTests.cpp SheetTests.cpp)
vantrel_test_at_3x(WindowTests *opensAtItsSize*:*thePanelTakes*)

# The whole job of the program once, by hand, in the real window.
add_test(NAME Tour COMMAND vantrel_tour --demo --output ${CMAKE_CURRENT_BINARY_DIR}/tour)
set_tests_properties(Tour PROPERTIES TIMEOUT 300 ENVIRONMENT "${VANTREL_TEST_ENVIRONMENT}")
vantrel_test(DemoPhoneTests LIBRARIES demo_phone_fixture SOURCES DemoPhoneTests.cpp)
vantrel_gui_test(FuzzReplayTests LIBRARIES fuzz_targets SOURCES FuzzReplayTests.cpp)
if(NOT APPLE)
    vantrel_gui_test(DesktopTests LIBRARIES vantrel_app_window demo_phone_fixture
                     SOURCES CopyReportsTests.cpp DesktopTests.cpp ThumbnailerTests.cpp support/OpenedAddresses.h)
    set_target_properties(DesktopTests PROPERTIES AUTOMOC ON)
    vantrel_wayland_test(WaylandTests 1024x600 1366x768 1920x1080)
    # What the compositor does by itself, they let a test pretend likewise.
    if(VANTREL_QPA)
        target_link_libraries(WaylandTests PRIVATE Qt6::GuiPrivate)
        target_compile_definitions(WaylandTests PRIVATE VANTREL_HAS_QPA)
    endif()
    if(TARGET PkgConfig::XCB)
        add_executable(X11Tests X11Tests.cpp)
        target_link_libraries(X11Tests PRIVATE vantrel_app_window PkgConfig::XCB ${VANTREL_GUI_TEST_LIBRARIES})
        vantrel_test_target(X11Tests)
        vantrel_use_precompiled(X11Tests gui_test)
        add_test(NAME X11Tests COMMAND X11Tests)
        # Leaks are not looked for: those of the toolkit's X11 plugin have no name.
        set_tests_properties(X11Tests PROPERTIES TIMEOUT 300 ENVIRONMENT
                             "${VANTREL_TEST_ENVIRONMENT};ASAN_OPTIONS=detect_leaks=0")
    endif()
    vantrel_test(FaultMatrixTests LIBRARIES vantrel_state demo_phone_fixture SOURCES FaultMatrixTests.cpp)
    vantrel_test(HostilePhoneTests LIBRARIES vantrel_state demo_phone_fixture SOURCES HostilePhoneTests.cpp)
    add_executable(copyProgram support/copyProgram.cpp)
    target_link_libraries(copyProgram PRIVATE vantrel_state ${VANTREL_TEST_LIBRARIES})
    vantrel_test_target(copyProgram)
    vantrel_use_precompiled(copyProgram test)
    vantrel_test(KillTests LIBRARIES vantrel_state demo_phone_fixture SOURCES KillTests.cpp)
    add_dependencies(KillTests copyProgram)
    target_compile_definitions(KillTests PRIVATE VANTREL_COPY_PROGRAM="$<TARGET_FILE:copyProgram>")
    vantrel_test(SoakTests LIBRARIES vantrel_state demo_phone_fixture SOURCES SoakTests.cpp)
    vantrel_test(ProgramTests LIBRARIES Qt6::Core SOURCES ProgramTests.cpp)
    add_dependencies(ProgramTests vantrel)
    target_compile_definitions(ProgramTests PRIVATE VANTREL_PROGRAM="$<TARGET_FILE:vantrel>")
    vantrel_gui_test(InstallTests LIBRARIES Qt6::Gui SOURCES InstallTests.cpp)
    add_dependencies(InstallTests vantrel)
    target_compile_definitions(
        InstallTests PRIVATE VANTREL_CMAKE="${CMAKE_COMMAND}" VANTREL_BUILD_DIRECTORY="${PROJECT_BINARY_DIR}"
                             VANTREL_SOURCE_DIRECTORY="${PROJECT_SOURCE_DIR}"
                             VANTREL_IS_DEVELOPMENT=$<BOOL:${VANTREL_DEVELOPMENT_RESOURCES}>
                             VANTREL_VERSION="${PROJECT_VERSION} \(${VANTREL_BUILD_NUMBER}\)")
endif()
