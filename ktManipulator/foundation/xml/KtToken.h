#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ktManipulator/foundation/core/KtExport.h"

/// The name of an XML element or attribute.
///
/// The text of a name that belongs to an XML namespace is the namespace's name directly followed
/// by the local name, as in "http://host/path#mass". Comparison is by text. Copies share the text,
/// so that tables of tokens are cheap.
class KT_EXPORT KtToken {
 public:
  /// From text; a null pointer counts as empty text.
  explicit KtToken(const char* text)
      : text_(std::make_shared<const std::string>(text != nullptr ? text : "")) {}
  /// From text.
  explicit KtToken(std::string text)
      : text_(std::make_shared<const std::string>(std::move(text))) {}

  /// A copy, also of what could be moved from: that would be left without a text.
  KtToken(const KtToken&) = default;
  KtToken& operator=(const KtToken&) = default;  ///< The same.

  /// The text.
  operator const std::string&() const noexcept { return *text_; }  // NOLINT
  /// The text, by value.
  std::string token() const { return *text_; }
  /// The text, as a reference that lives as long as this token keeps its value.
  const std::string& text() const noexcept { return *text_; }

  /// Appends to the text of this token; copies made before keep theirs.
  KtToken& operator+=(const std::string& suffix) {
    text_ = std::make_shared<const std::string>(*text_ + suffix);
    return *this;
  }

  bool operator==(const KtToken& other) const noexcept {
    return text_ == other.text_ || *text_ == *other.text_;
  }
  bool operator==(const std::string& other) const noexcept { return *text_ == other; }
  bool operator==(const char* other) const noexcept { return *text_ == other; }

  /// The part of the text behind the namespace: behind the last '#' or '/'.
  std::string_view localName() const noexcept {
    const std::string_view all = *text_;
    return all.substr(all.find_last_of("#/") + 1);
  }
  /// The namespace: the text up to and with the last '#' or '/'; empty for a plain name.
  std::string_view namespaceName() const noexcept {
    const std::string_view all = *text_;
    return all.substr(0, all.find_last_of("#/") + 1);
  }

 private:
  std::shared_ptr<const std::string> text_;
};
