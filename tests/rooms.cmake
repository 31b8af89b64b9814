# One line per room. Its file is tests/NAME.cpp.
vantrel_test(RecordsTests LIBRARIES vantrel_core SOURCES RecordsTests.cpp)
vantrel_test(ADBTextTests LIBRARIES vantrel_core SOURCES ADBTextTests.cpp)
vantrel_test(ADBClientTests LIBRARIES vantrel_core demo_phone_fixture SOURCES ADBClientTests.cpp)
vantrel_test(MacFilesTests LIBRARIES vantrel_core SOURCES MacFilesTests.cpp)
vantrel_test(AppStateTests LIBRARIES vantrel_core demo_phone_fixture SOURCES AppStateTests.cpp)
vantrel_gui_test(KitTests LIBRARIES vantrel_ui SOURCES KitTests.cpp)
vantrel_gui_test(FileRowTests LIBRARIES vantrel_ui SOURCES FileRowTests.cpp)
vantrel_gui_test(PaneTests LIBRARIES vantrel_ui demo_phone_fixture SOURCES PaneTests.cpp)
# The same geometry on a screen of three device pixels to one.
add_test(NAME PaneTestsAt3x COMMAND PaneTests --gtest_filter=*geometry*:*ShareTheWidth*:*headersStand*)
set_tests_properties(PaneTestsAt3x PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_SCALE_FACTOR=3;LC_ALL=C.UTF-8")
vantrel_test(DemoPhoneTests LIBRARIES demo_phone_fixture SOURCES DemoPhoneTests.cpp)
vantrel_test(AnalyticsTests LIBRARIES vantrel_analytics SOURCES AnalyticsTests.cpp)
vantrel_test(AnalyticsNetworkTests LIBRARIES vantrel_analytics SOURCES AnalyticsNetworkTests.cpp
             support/LocalHttpServer.cpp)
vantrel_gui_test(ChromeTests LIBRARIES vantrel_ui SOURCES ChromeTests.cpp)
vantrel_test(UpdaterTests LIBRARIES vantrel_ui SOURCES UpdaterTests.cpp support/HttpsServer.cpp support/HttpsServer.h)
vantrel_gui_test(AboutTests LIBRARIES vantrel_ui SOURCES AboutTests.cpp)
vantrel_test(FuzzReplayTests LIBRARIES fuzz_targets SOURCES FuzzReplayTests.cpp)
vantrel_test(SettingsTests LIBRARIES vantrel_ui SOURCES SettingsTests.cpp)
if(NOT APPLE)
    vantrel_test(FaultMatrixTests LIBRARIES vantrel_core demo_phone_fixture SOURCES FaultMatrixTests.cpp)
    vantrel_test(HostilePhoneTests LIBRARIES vantrel_core demo_phone_fixture SOURCES HostilePhoneTests.cpp)
    vantrel_test(InstallTests LIBRARIES Qt6::Gui SOURCES InstallTests.cpp)
    add_dependencies(InstallTests vantrel)
    target_compile_definitions(
        InstallTests PRIVATE VANTREL_CMAKE="${CMAKE_COMMAND}" VANTREL_BUILD_DIRECTORY="${PROJECT_BINARY_DIR}"
                             VANTREL_VERSION="${PROJECT_VERSION} \(${VANTREL_BUILD_NUMBER}\)")
endif()
vantrel_gui_test(ShellTests LIBRARIES vantrel_ui demo_phone_fixture SOURCES ShellTests.cpp)
if(NOT APPLE)
    vantrel_gui_test(DesktopTests LIBRARIES vantrel_ui demo_phone_fixture SOURCES DesktopTests.cpp)
endif()
# The same places on a screen of three device pixels to one.
add_test(NAME ShellTestsAt3x
         COMMAND ShellTests --gtest_filter=*hasItsPlaces*:*aLongMessage*:*opensAtItsSize*:*thePanelGrows*:*everyRow*)
get_property(shell_environment TEST ShellTests PROPERTY ENVIRONMENT)
set_tests_properties(ShellTestsAt3x PROPERTIES TIMEOUT 300 ENVIRONMENT "${shell_environment};QT_SCALE_FACTOR=3")
