#include "Kit/AppStyle.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv) {
    QApplication application(argc, argv);
    vantrel::AppStyle::install(application, std::chrono::milliseconds(250));
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
