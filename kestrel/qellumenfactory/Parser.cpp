#include "Parser.h"

#include "Dialects.h"
#include "Tokenizer.h"

#include <set>
#include <string>
#include <utility>

namespace qellumenfactory {

namespace {

std::string InQuotes(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

class Parser {
public:
    Parser(std::string_view text, std::string_view name) : mTokenizer(text, name), mName(name) {}

    Layout Parse()
    {
        Take();
        NeedWord("a widget's name, for instance qel_dialog or dialog");
        const bool isLumen = mToken.text.starts_with("qel_");
        mDialect = isLumen ? Dialect::Lumen : Dialect::Sable;
        Layout layout{mDialect, ParseNode(ControlKind::Dialog, 1, /*insideRadioGroup=*/false)};
        if (mToken.kind != TokenKind::End) {
            Fail("expected the end after the dialog, found " + Describe(mToken));
        }
        return layout;
    }

private:
    [[noreturn]] void Fail(const std::string& text) const { throw LayoutError(mName, mToken.position, text); }

    void Take() { mToken = mTokenizer.Next(); }

    void NeedWord(std::string_view what) const
    {
        if (mToken.kind != TokenKind::Word) {
            Fail("expected " + std::string(what) + ", found " + Describe(mToken));
        }
    }

    void TakeMark(char mark, const std::string& where)
    {
        if (!mToken.Is(mark)) {
            Fail(std::string("expected '") + mark + "' " + where + ", found " + Describe(mToken));
        }
        Take();
    }

    ControlKind TakeKind(ControlKind parent, int depth, bool insideRadioGroup)
    {
        const auto kind = FindKind(mToken.text, mDialect);
        if (!kind) {
            std::string known;
            for (int index = 0; index < qelui::kControlKindCount; ++index) {
                known += (index == 0 ? "" : ", ");
                known += NameOf(static_cast<ControlKind>(index), mDialect);
            }
            Fail(InQuotes(mToken.text) + " is not a widget; the widgets are: " + known);
        }
        if ((depth == 1) != (*kind == ControlKind::Dialog)) {
            Fail(depth == 1 ? "the outermost widget is " + std::string(NameOf(ControlKind::Dialog, mDialect)) +
                                  ", not " + mToken.text
                            : mToken.text + " stands inside " + std::string(NameOf(parent, mDialect)) +
                                  ", but only outermost");
        }
        if (*kind == ControlKind::RadioButton && !insideRadioGroup) {
            Fail(mToken.text + " stands inside a " + std::string(NameOf(ControlKind::RadioGroup, mDialect)) +
                 " only");
        }
        Take();
        return *kind;
    }

    /// Begins at the node's name. Recursive, therefore the depth is limited.
    LayoutNode ParseNode(ControlKind parent, int depth, bool insideRadioGroup)
    {
        if (depth > kDeepestNesting) {
            Fail("widgets nest at most " + std::to_string(kDeepestNesting) + " deep");
        }
        LayoutNode node;
        node.kind = TakeKind(parent, depth, insideRadioGroup);
        const bool inRadio = insideRadioGroup || node.kind == ControlKind::RadioGroup;
        if (mDialect == Dialect::Lumen) {
            ParseLumenParameters(node);
            if (mToken.Is('{')) {
                NeedHolder(node);
                Take();
                ParseChildren(node, depth, inRadio);
            }
        } else {
            TakeMark('{', "after " + std::string(NameOf(node.kind, mDialect)));
            ParseSableBody(node, depth, inRadio);
        }
        CheckLimits(node);
        return node;
    }

    void NeedHolder(const LayoutNode& node) const
    {
        if (!HoldsChildren(node.kind)) {
            Fail(std::string(NameOf(node.kind, mDialect)) + " holds no widgets");
        }
    }

    void ParseLumenParameters(LayoutNode& node)
    {
        const std::string name(NameOf(node.kind, mDialect));
        TakeMark('(', "after " + name);
        while (!mToken.Is(')')) {
            NeedWord("a parameter's name or ')'");
            Token word = std::exchange(mToken, mTokenizer.Next());
            ParseParameter(node, word, ':');
            if (mToken.Is(',')) {
                Take();
            } else if (!mToken.Is(')')) {
                Fail("expected ',' or ')' after a parameter of " + name + ", found " + Describe(mToken));
            }
        }
        Take();
    }

    /// After '{': widgets up to and with '}'.
    void ParseChildren(LayoutNode& node, int depth, bool insideRadioGroup)
    {
        while (!mToken.Is('}')) {
            NeedWord("a widget's name or '}'");
            node.children.push_back(ParseNode(node.kind, depth + 1, insideRadioGroup));
        }
        Take();
    }

    /// After '{': parameters, then widgets, up to and with '}'.
    void ParseSableBody(LayoutNode& node, int depth, bool insideRadioGroup)
    {
        while (!mToken.Is('}')) {
            NeedWord("a property's or a widget's name, or '}'");
            if (FindKey(mToken.text, node.kind, mDialect) || !FindKind(mToken.text, mDialect)) {
                if (!node.children.empty()) {
                    Fail("properties stand before the widgets of " + std::string(NameOf(node.kind, mDialect)));
                }
                const Token word = std::exchange(mToken, mTokenizer.Next());
                ParseParameter(node, word, '=');
            } else {
                NeedHolder(node);
                node.children.push_back(ParseNode(node.kind, depth + 1, insideRadioGroup));
            }
        }
        Take();
    }

    /// After the parameter's name.
    void ParseParameter(LayoutNode& node, const Token& word, char assignment)
    {
        const std::string widget(NameOf(node.kind, mDialect));
        const auto key = FindKey(word.text, node.kind, mDialect);
        if (!key) {
            std::string known;
            for (const Key each : KeysOf(node.kind)) {
                known += (known.empty() ? "" : ", ") + std::string(NameOf(each, node.kind, mDialect));
            }
            throw LayoutError(mName, word.position,
                              widget + " has no " + InQuotes(word.text) + "; it has: " + known);
        }
        if (node.Find(*key) != nullptr) {
            throw LayoutError(mName, word.position, widget + " has " + word.text + " twice");
        }
        TakeMark(assignment, "after " + word.text);
        ParameterValue value = ParseValue(*key, word.text);
        if (const auto fault = FindValueFault(*key, value)) {
            Fail(word.text + " is " + *fault + ", not " + Describe(mToken));
        }
        if (*key == Key::Identifier && !mIdentifiers.insert(std::get<std::string>(value)).second) {
            Fail("the identifier " + InQuotes(mToken.text) + " is taken already");
        }
        node.parameters.push_back({*key, std::move(value), word.position});
        Take();
    }

    /// The value's token stays the current one, for messages about it.
    [[nodiscard]] ParameterValue ParseValue(Key key, const std::string& name) const
    {
        switch (TypeOf(key)) {
        case ValueType::Text:
            if (mToken.kind == TokenKind::Text) {
                return mToken.text;
            }
            Fail("expected a text in quotes for " + name + ", found " + Describe(mToken));
        case ValueType::Number:
            if (mToken.kind == TokenKind::Number) {
                return mToken.number;
            }
            Fail("expected a number for " + name + ", found " + Describe(mToken));
        case ValueType::Truth:
            break;
        }
        if (mToken.kind == TokenKind::Word && (mToken.text == "true" || mToken.text == "false")) {
            return mToken.text == "true";
        }
        Fail("expected true or false for " + name + ", found " + Describe(mToken));
    }

    void CheckLimits(const LayoutNode& node) const
    {
        const auto minimum = node.Number(Key::MinValue);
        const auto maximum = node.Number(Key::MaxValue);
        if (minimum && maximum && *minimum > *maximum) {
            throw LayoutError(mName, node.Find(Key::MinValue)->position,
                              std::string(NameOf(Key::MinValue, node.kind, mDialect)) + " is above " +
                                  std::string(NameOf(Key::MaxValue, node.kind, mDialect)));
        }
    }

    Tokenizer mTokenizer;
    std::string_view mName;
    Dialect mDialect = Dialect::Lumen;
    Token mToken;
    // The row of OK and Cancel has these two.
    std::set<std::string, std::less<>> mIdentifiers{"okButton", "cancelButton"};
};

} // namespace

Layout ParseLayout(std::string_view text, std::string_view name)
{
    return Parser(text, name).Parse();
}

} // namespace qellumenfactory
