/// Ready-made clips to begin with.
#pragma once

#include <span>
#include <string_view>

namespace tessel::document {

struct Template {
    std::string_view name;
    std::string_view summary;
    /// Settings as `tessel new` and `tessel set` take them, between blanks: "size=1920x1080 rate=25".
    std::string_view settings;
};

/// The first is the default. Static storage. Threads: [thread-safe].
[[nodiscard]] std::span<const Template> AllTemplates() noexcept;

/// Null where no template has that name.
[[nodiscard]] const Template* TemplateNamed(std::string_view name) noexcept;

} // namespace tessel::document
