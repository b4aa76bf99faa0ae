/// Cuts layout texts into tokens. Both dialects have the same ones.
#pragma once

#include "Layout.h"

#include <string>
#include <string_view>

namespace qellumenfactory {

enum class TokenKind { Word, Text, Number, Mark, End };

struct Token {
    TokenKind kind = TokenKind::End;
    /// A word, a text without quotes and escapes, or one of the marks ( ) { } : , =
    std::string text;
    double number = 0.0;
    Position position;

    [[nodiscard]] bool Is(char mark) const noexcept { return kind == TokenKind::Mark && text.front() == mark; }
};

/// The token in a message: "'{'", "the word \"border\"", "the end".
[[nodiscard]] std::string Describe(const Token& token);

/// Gives the tokens of one text, one at a time. The text is borrowed and must outlive this object.
class Tokenizer {
public:
    /// @param name  The name of the text in errors.
    Tokenizer(std::string_view text, std::string_view name);

    /// The next token; at the end of the text, `End` at each call. @throws LayoutError
    [[nodiscard]] Token Next();

private:
    void SkipBlanksAndComments();
    void Advance() noexcept;
    [[nodiscard]] bool IsAtEnd() const noexcept { return mAt >= mText.size(); }
    [[nodiscard]] Token ReadText();
    [[nodiscard]] Token ReadNumber();
    [[nodiscard]] Token ReadWord();

    std::string_view mText;
    std::string_view mName;
    std::size_t mAt = 0;
    Position mPosition;
};

} // namespace qellumenfactory
