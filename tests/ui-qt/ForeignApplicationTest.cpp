// A host that has a Qt application of its own, which cannot show widgets.
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <string>

namespace {

TEST(ForeignApplication, WithoutWidgetsIsRefusedInsteadOfEndingTheHost)
{
    int count = 1;
    char name[] = "host";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    qputenv("KESTREL_UI", "qt");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    try {
        (void)qelui::UserInterface::Get().GetToolkit();
        FAIL() << "a window would end the process now";
    } catch (const qelui::NoToolkitError& error) {
        EXPECT_NE(std::string(error.what()).find("has no widgets"), std::string::npos) << error.what();
    }
}

} // namespace
