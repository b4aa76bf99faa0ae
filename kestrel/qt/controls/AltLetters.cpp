#include "AltLetters.h"

#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <algorithm>
#include <set>
#include <vector>

namespace kestrelqt {

namespace {

using qelui::UI_ControlView;

bool BeginsWord(const QString& label, qsizetype at)
{
    return at == 0 || !label[at - 1].isLetterOrNumber();
}

/// Letters of a label, the best ones first. Only those of every keyboard.
QString Candidates(const QString& label)
{
    QString initials;
    QString others;
    for (qsizetype at = 0; at < label.size(); ++at) {
        const QChar letter = label[at].toUpper();
        if (letter < QLatin1Char('A') || letter > QLatin1Char('Z')) {
            continue;
        }
        QString& letters = BeginsWord(label, at) ? initials : others;
        if (!letters.contains(letter)) {
            letters += letter;
        }
    }
    return initials + others;
}

/// Gives letters to controls so that as many as possible get one: a control that finds its letters taken lets
/// their holders look for others.
class Matching {
public:
    explicit Matching(std::vector<QString> candidates) : mCandidates(std::move(candidates)) {}

    bool Give(std::size_t control, std::set<QChar>& tried)
    {
        for (const QChar letter : mCandidates[control]) {
            if (!tried.insert(letter).second) {
                continue;
            }
            const auto holder = mHolders.find(letter);
            if (holder == mHolders.end() || Give(holder->second, tried)) {
                mHolders[letter] = control;
                return true;
            }
        }
        return false;
    }
    [[nodiscard]] const std::map<QChar, std::size_t>& Holders() const { return mHolders; }

private:
    std::vector<QString> mCandidates;
    std::map<QChar, std::size_t> mHolders;
};

} // namespace

std::map<const UI_ControlView*, QChar> ChooseAltLetters(qelui::UI_Dialog& dialog,
                                                        bool (*changesLabel)(const UI_ControlView& control))
{
    std::vector<const UI_ControlView*> controls;
    std::map<std::string, int> occurrences;
    std::map<const UI_ControlView*, QChar> letters;
    for (UI_ControlView* const control : dialog.AllControls()) {
        if (control->Identifier() == qelui::UI_OkCancelRow::kOkIdentifier) {
            letters[control] = QLatin1Char('O');
        } else if (control->Identifier() == qelui::UI_OkCancelRow::kCancelIdentifier) {
            letters[control] = QLatin1Char('C');
        } else if (qelui::IsActedOn(control->Kind()) && !changesLabel(*control)) {
            controls.push_back(control);
            ++occurrences[control->Label()];
        }
    }
    const bool isOkThere = !letters.empty();
    std::vector<QString> candidates;
    for (const UI_ControlView* const control : controls) {
        const bool isUnique = occurrences[control->Label()] == 1;
        QString own = isUnique ? Candidates(QString::fromStdString(control->Label())) : QString();
        if (isOkThere) {
            own.remove(QLatin1Char('O')).remove(QLatin1Char('C'));
        }
        candidates.push_back(own);
    }
    Matching matching(candidates);
    for (std::size_t control = 0; control < controls.size(); ++control) {
        std::set<QChar> tried;
        matching.Give(control, tried);
    }
    for (const auto& [letter, control] : matching.Holders()) {
        letters[controls[control]] = letter;
    }
    return letters;
}

QString WithAltLetter(const std::string& label, QChar letter)
{
    const QString plain = QString::fromStdString(label);
    qsizetype marked = -1;
    for (qsizetype at = 0; at < plain.size() && !letter.isNull(); ++at) {
        if (plain[at].toUpper() == letter && (marked < 0 || BeginsWord(plain, at))) {
            marked = at;
            if (BeginsWord(plain, at)) {
                break;
            }
        }
    }
    QString text;
    for (qsizetype at = 0; at < plain.size(); ++at) {
        if (at == marked || plain[at] == QLatin1Char('&')) {
            text += QLatin1Char('&');
        }
        text += plain[at];
    }
    return text;
}

QString WithoutAltLetter(const QString& text)
{
    QString plain;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (text[at] == QLatin1Char('&') && at + 1 < text.size()) {
            ++at;
        }
        plain += text[at];
    }
    return plain;
}

} // namespace kestrelqt
