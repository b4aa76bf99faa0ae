/// A toolkit in which the test acts as the person.
#pragma once

#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/dialogs/UI_MessageBox.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tests {

/// In use from construction to destruction. `act` is what the person does while a dialog stands; answers to
/// nested dialogs are taken in order, and where none is left they are cancelled.
class FakeToolkit final : public qelui::Toolkit {
public:
    explicit FakeToolkit(std::function<void(qelui::UI_Dialog&)> act = {}) : mAct(std::move(act))
    {
        qelui::UserInterface::Get().SetToolkit(this);
    }
    ~FakeToolkit() override { qelui::UserInterface::Get().SetToolkit(nullptr); }
    FakeToolkit(const FakeToolkit&) = delete;
    FakeToolkit& operator=(const FakeToolkit&) = delete;

    void RunModal(qelui::UI_Dialog& dialog) override
    {
        ++runs;
        if (mAct) {
            mAct(dialog);
        }
    }
    std::optional<std::u16string> RunFileDialog(const qelui::FileDialogRequest& request) override
    {
        fileRequests.push_back(request);
        return Next(files);
    }
    int RunMessageBox(const qelui::MessageBoxRequest& request) override
    {
        boxRequests.push_back(request);
        return Next(boxes).value_or(qelui::dialogs::kButtonNo);
    }
    std::optional<qelui::sharedui::PickerColor>
    RunColorPicker(const qelui::ColorPickerRequest& request) override
    {
        colorRequests.push_back(request);
        return Next(colors);
    }

    std::deque<std::optional<std::u16string>> files;
    std::deque<std::optional<int>> boxes;
    std::deque<std::optional<qelui::sharedui::PickerColor>> colors;
    std::vector<qelui::FileDialogRequest> fileRequests;
    std::vector<qelui::MessageBoxRequest> boxRequests;
    std::vector<qelui::ColorPickerRequest> colorRequests;
    int runs = 0;

private:
    template <class Answer>
    static std::optional<Answer> Next(std::deque<std::optional<Answer>>& answers)
    {
        if (answers.empty()) {
            return std::nullopt;
        }
        std::optional<Answer> answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }

    std::function<void(qelui::UI_Dialog&)> mAct;
};

} // namespace tests
