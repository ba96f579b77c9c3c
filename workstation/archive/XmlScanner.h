#pragma once
// The marks of an XML text: prolog, tags, character data. What the tags mean is its user's business.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace workstation {

class XmlScanner {
 public:
  struct Tag {
    enum class Kind { Open, Close, Empty, End };  ///< End: there is nothing more
    Kind kind = Kind::End;
    std::string_view name;
  };

  /// `xml` must outlive the scanner.
  explicit XmlScanner(std::string_view xml);

  /// XML declaration and document type. False when there is a problem.
  bool readProlog();
  /// The next tag, over blanks, comments and processing instructions. Nothing when there is a problem.
  std::optional<Tag> nextTag();
  /// Appends the character data up to the closing tag of `name`, which is read too. False when there is a problem.
  bool readText(std::string_view name, std::string& text);

  /// What is wrong and in which line; empty while nothing is.
  const std::string& problem() const { return problem_; }
  /// Notes a problem at the place reached, unless there is one already. Returns false.
  bool refuse(const std::string& what);

 private:
  bool startsWith(std::string_view mark) const { return xml_.substr(at_, mark.size()) == mark; }
  void skipBlanks();
  bool skipBlanksAndRemarks();
  bool skipBehind(std::string_view mark, const char* what);
  bool readDeclaration();
  bool readDocumentType();
  bool readReference(std::string& text);
  std::optional<Tag> readTag();

  std::string_view xml_;
  std::size_t at_ = 0;
  std::string problem_;
};

}  // namespace workstation
