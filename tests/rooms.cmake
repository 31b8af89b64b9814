# One line per room. Its file is tests/NAME.cpp.
vantrel_test(RecordsTests LIBRARIES vantrel_core SOURCES RecordsTests.cpp)
vantrel_test(ADBTextTests LIBRARIES vantrel_core SOURCES ADBTextTests.cpp)
vantrel_test(ADBClientTests LIBRARIES vantrel_core demo_phone_fixture SOURCES ADBClientTests.cpp)
vantrel_test(MacFilesTests LIBRARIES vantrel_core SOURCES MacFilesTests.cpp)
vantrel_test(AppStateTests LIBRARIES vantrel_core demo_phone_fixture SOURCES AppStateTests.cpp)
vantrel_gui_test(KitTests LIBRARIES vantrel_ui SOURCES KitTests.cpp)
vantrel_test(DemoPhoneTests LIBRARIES demo_phone_fixture SOURCES DemoPhoneTests.cpp)
vantrel_test(AnalyticsTests LIBRARIES vantrel_analytics SOURCES AnalyticsTests.cpp)
vantrel_test(AnalyticsNetworkTests LIBRARIES vantrel_analytics SOURCES AnalyticsNetworkTests.cpp
             support/LocalHttpServer.cpp)
vantrel_test(ChromeTests LIBRARIES vantrel_ui SOURCES ChromeTests.cpp)
vantrel_test(UpdaterTests LIBRARIES vantrel_ui SOURCES UpdaterTests.cpp support/HttpsServer.cpp support/HttpsServer.h)
