#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qellumenfactory/Layout.h>
#include <kestrel/qellumenfactory/UI_LumenViewBase.h>
#include <kestrel/qellumenfactory/UI_NodeManager.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelworkspace/Workspace.h>
#include <tests/unit/qelui/FakeToolkit.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

namespace {

using namespace qellumenfactory;

/// Binds what a test says.
class View final : public UI_LumenViewBase {
public:
    explicit View(std::function<void(qelui::UI_Dialog&)> bind = {}, qelui::TopLevelWindow* parent = nullptr)
        : UI_LumenViewBase("TestView", {qelui::Theme::Light}, parent, kPreferLumen), mBind(std::move(bind))
    {
    }
    void BindControls() override
    {
        if (mBind) {
            mBind(GetDialog());
        }
    }
    void Run(const std::string& layout)
    {
        std::istringstream stream(layout);
        ParseLumenScript(stream);
    }

private:
    std::function<void(qelui::UI_Dialog&)> mBind;
};

constexpr char kLayout[] = R"(qel_dialog(title: "T") { qel_button(identifier: "b") qel_ok_cancel_row() })";

TEST(View, BindsThenShowsThenReturns)
{
    std::string order;
    qelworkspace::workspace::MainWindow window("W");
    tests::FakeToolkit toolkit([&](qelui::UI_Dialog& dialog) {
        order += "shown ";
        EXPECT_EQ(dialog.Title(), "T");
        EXPECT_EQ(dialog.ParentWindow(), &window);
        EXPECT_EQ(dialog.GetDrawSupplier().theme, qelui::Theme::Light);
        dialog.GetControl<qelui::UI_Button>("b").Press();
    });
    const auto view = std::make_shared<View>(
        [&](qelui::UI_Dialog& dialog) {
            order += "bound ";
            dialog.GetControl<qelui::UI_Button>("b").NotifyWhenChanged([&] {
                order += "pressed";
                dialog.Close();
            });
        },
        &window);
    view->Run(kLayout);
    EXPECT_EQ(order, "bound shown pressed");
}

TEST(View, AControlThatIsMissingShowsNothing)
{
    tests::FakeToolkit toolkit;
    const auto view =
        std::make_shared<View>([](qelui::UI_Dialog& dialog) { (void)dialog.GetControl<qelui::UI_Popup>("b"); });
    EXPECT_THROW(view->Run(kLayout), qelcore::null_pointer_exception);
    EXPECT_EQ(toolkit.runs, 0);
}

TEST(View, ABrokenLayoutShowsNothingAndNamesTheView)
{
    tests::FakeToolkit toolkit;
    try {
        std::make_shared<View>()->Run("qel_dialog(");
        ADD_FAILURE() << "nothing was thrown";
    } catch (const LayoutError& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("TestView:1:12: ")) << error.what();
    }
    EXPECT_EQ(toolkit.runs, 0);
}

TEST(View, FindsNoLayoutWhereNoLibraryHasOne)
{
    std::ostringstream stream;
    EXPECT_FALSE(std::make_shared<View>()->GetScriptStream("TestView", stream));
    EXPECT_EQ(stream.str(), "");
}

TEST(View, AnswersToItsInterfaceOnly)
{
    const auto view = std::make_shared<View>();
    EXPECT_EQ(view->QueryInterface("qellumenfactory::UI_ILumenView"), static_cast<UI_ILumenView*>(view.get()));
    EXPECT_EQ(view->QueryInterface("qellumenfactory::UI_ILumenVie"), nullptr);
}

TEST(NodeManager, HandsOutTheSupplierThatWasSet)
{
    EXPECT_EQ(UI_NodeManager::Get().GetDefaultDrawSupplier().theme, qelui::Theme::Dark);
    UI_NodeManager::Get().SetDefaultDrawSupplier({qelui::Theme::Light});
    EXPECT_EQ(UI_NodeManager::Get().GetDefaultDrawSupplier().theme, qelui::Theme::Light);
    UI_NodeManager::Get().SetDefaultDrawSupplier({});
}

TEST(Workspace, TheMainWindowIsTheOldestLivingOne)
{
    using qelworkspace::workspace::MainWindow;
    using qelworkspace::workspace::WorkspaceUtils;
    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), nullptr);
    auto first = std::make_unique<MainWindow>("one");
    const MainWindow second("two");
    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), first.get());
    EXPECT_EQ(first->GetWorkspace()->Name(), "one");
    first.reset();
    EXPECT_EQ(WorkspaceUtils::FindMainTopLevelWindow(), &second);
}

} // namespace
