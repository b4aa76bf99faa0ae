#include "Tokenizer.h"

#include <kestrel/qelcore/text/Unicode.h>

#include <charconv>
#include <cmath>
#include <system_error>

namespace qellumenfactory {

namespace {

// Not <cctype>, which depends on the locale.
constexpr bool IsLetter(char c) noexcept
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

constexpr bool IsDigit(char c) noexcept
{
    return c >= '0' && c <= '9';
}

constexpr bool IsBlank(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

std::string Describe(const Token& token)
{
    switch (token.kind) {
    case TokenKind::Word:
        return "the word \"" + token.text + '"';
    case TokenKind::Text:
        return "the text \"" + token.text + '"';
    case TokenKind::Number:
        return "the number " + token.text;
    case TokenKind::Mark:
        return '\'' + token.text + '\'';
    case TokenKind::End:
        break;
    }
    return "the end";
}

Tokenizer::Tokenizer(std::string_view text, std::string_view name) : mText(text), mName(name)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (mText.starts_with(kByteOrderMark)) {
        mText.remove_prefix(kByteOrderMark.size());
    }
}

void Tokenizer::Advance() noexcept
{
    const char passed = mText[mAt++];
    if (passed == '\n') {
        ++mPosition.line;
        mPosition.column = 1;
        // Columns count characters, so only the first byte of each counts.
    } else if ((static_cast<unsigned char>(passed) & 0xC0U) != 0x80U) {
        ++mPosition.column;
    }
}

void Tokenizer::SkipBlanksAndComments()
{
    while (!IsAtEnd()) {
        if (IsBlank(mText[mAt])) {
            Advance();
        } else if (mText.substr(mAt).starts_with("//")) {
            const Position position = mPosition;
            const std::size_t begin = mAt;
            while (!IsAtEnd() && mText[mAt] != '\n') {
                Advance();
            }
            if (!qelcore::text::ToUTF16Strict(mText.substr(begin, mAt - begin))) {
                throw LayoutError(mName, position, "this comment is not UTF-8");
            }
        } else {
            return;
        }
    }
}

Token Tokenizer::ReadText()
{
    Token token{TokenKind::Text, {}, 0.0, mPosition};
    Advance();
    for (;;) {
        if (IsAtEnd() || mText[mAt] == '\n' || mText[mAt] == '\r') {
            throw LayoutError(mName, token.position, "this text is not closed on its line; expected '\"'");
        }
        const char c = mText[mAt];
        if (c == '"') {
            break;
        }
        if (c == '\\') {
            const Position position = mPosition;
            Advance();
            const char escaped = IsAtEnd() ? '\0' : mText[mAt];
            if (escaped == 'n') {
                token.text += '\n';
            } else if (escaped == '"' || escaped == '\\') {
                token.text += escaped;
            } else {
                throw LayoutError(mName, position, R"(expected \", \\ or \n)");
            }
        } else if (static_cast<unsigned char>(c) < 0x20U) {
            throw LayoutError(mName, mPosition, "a control character in a text");
        } else {
            token.text += c;
        }
        Advance();
    }
    Advance();
    if (!qelcore::text::ToUTF16Strict(token.text)) {
        throw LayoutError(mName, token.position, "this text is not UTF-8");
    }
    return token;
}

Token Tokenizer::ReadNumber()
{
    Token token{TokenKind::Number, {}, 0.0, mPosition};
    while (!IsAtEnd() && (IsDigit(mText[mAt]) || IsLetter(mText[mAt]) || mText[mAt] == '.' ||
                          mText[mAt] == '-' || mText[mAt] == '+')) {
        token.text += mText[mAt];
        Advance();
    }
    const char* const end = token.text.data() + token.text.size();
    const auto [stop, error] = std::from_chars(token.text.data(), end, token.number);
    if (error != std::errc{} || stop != end || !std::isfinite(token.number)) {
        throw LayoutError(mName, token.position, "\"" + token.text + "\" is not a number");
    }
    return token;
}

Token Tokenizer::ReadWord()
{
    Token token{TokenKind::Word, {}, 0.0, mPosition};
    while (!IsAtEnd() && (IsLetter(mText[mAt]) || IsDigit(mText[mAt]))) {
        token.text += mText[mAt];
        Advance();
    }
    return token;
}

Token Tokenizer::Next()
{
    constexpr std::string_view kMarks = "(){}:,=";
    SkipBlanksAndComments();
    if (IsAtEnd()) {
        return Token{TokenKind::End, {}, 0.0, mPosition};
    }
    const char c = mText[mAt];
    if (c == '"') {
        return ReadText();
    }
    if (IsDigit(c) || c == '-' || c == '.') {
        return ReadNumber();
    }
    if (IsLetter(c)) {
        return ReadWord();
    }
    if (kMarks.find(c) != std::string_view::npos) {
        Token token{TokenKind::Mark, std::string(1, c), 0.0, mPosition};
        Advance();
        return token;
    }
    throw LayoutError(mName, mPosition, "this character has no meaning here");
}

} // namespace qellumenfactory
