// Every test program: one event loop's worth of Qt without a display, an English region and no person to ask.

#include <gtest/gtest.h>

#include <QCoreApplication>

int main(int argc, char **argv) {
    qputenv("ORVELLE_UNATTENDED", "1");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
