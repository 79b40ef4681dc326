#include "TorqueTable.h"

#include <algorithm>

#include "Numbers.h"

namespace {

// Reads comma-separated values record by record.
class CsvReader {
 public:
  explicit CsvReader(std::string_view text) : text_(text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
  }

  // Returns false at the end of the text. Skips empty lines.
  bool next(std::vector<std::string>& fields) {
    do {
      if (at_ >= text_.size()) return false;
      line_ = nextLine_;
      readRecord(fields);
    } while (fields.size() == 1 && fields.front().empty());
    return true;
  }
  std::size_t line() const { return line_; }
  bool quotesAreOpen() const { return quotesAreOpen_; }

 private:
  void readRecord(std::vector<std::string>& fields) {
    fields.assign(1, {});
    bool quoted = false;
    for (; at_ < text_.size(); ++at_) {
      const char c = text_[at_];
      if (c == '\n') ++nextLine_;
      if (quoted) {
        if (c != '"') {
          fields.back() += c;
        } else if (text_.substr(at_ + 1, 1) == "\"") {
          fields.back() += '"';
          ++at_;
        } else {
          quoted = false;
        }
      } else if (c == '"') {
        quoted = true;
      } else if (c == ',') {
        fields.emplace_back();
      } else if (c == '\n') {
        ++at_;
        break;
      } else if (c != '\r' || text_.substr(at_ + 1, 1) != "\n") {
        fields.back() += c;
      }
    }
    quotesAreOpen_ = quoted;
  }

  std::string_view text_;
  std::size_t at_ = 0, line_ = 1, nextLine_ = 1;
  bool quotesAreOpen_ = false;
};

std::string_view withoutBlanks(std::string_view field) {
  const std::size_t first = field.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return field.substr(first, field.find_last_not_of(" \t") - first + 1);
}

}  // namespace

bool TorqueTable::read(std::string_view text, const std::string& file,
                       const std::vector<std::string>& joints, std::string& error) {
  *this = {};
  CsvReader csv(text);
  const auto fail = [&](const std::string& what) {
    error = file + ':' + std::to_string(csv.line()) + ": " + what;
    return false;
  };
  std::vector<std::string> fields;
  if (!csv.next(fields)) return fail("empty; the first line has to be a header, time,<joint>,...");
  if (csv.quotesAreOpen()) return fail("quotation marks are not closed");
  if (withoutBlanks(fields.front()) != "time") {
    return fail("the header begins with \"" + fields.front() + "\" in the place of \"time\"");
  }
  for (std::size_t i = 1; i < fields.size(); ++i) {
    const std::string name(withoutBlanks(fields[i]));
    const auto found = std::find(joints.begin(), joints.end(), name);
    if (found == joints.end()) return fail("there is no joint \"" + name + '"');
    if (std::find(found + 1, joints.end(), name) != joints.end()) {
      return fail("more than one joint is called \"" + name + '"');
    }
    const auto joint = static_cast<std::size_t>(found - joints.begin());
    if (std::find(joints_.begin(), joints_.end(), joint) != joints_.end()) {
      return fail("\"" + name + "\" has two columns");
    }
    joints_.push_back(joint);
  }
  std::vector<double> number;
  std::string wrong;
  while (csv.next(fields)) {
    if (csv.quotesAreOpen()) return fail("quotation marks are not closed");
    if (fields.size() != joints_.size() + 1) {
      return fail(std::to_string(fields.size()) + " values, but the header has " +
                  std::to_string(joints_.size() + 1));
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (!readNumbers(withoutBlanks(fields[i]), " ", number, wrong) || number.size() != 1) {
        return fail("\"" + fields[i] + "\" is not a number");
      }
      if (i > 0) {
        torques_.push_back(number.front());
        continue;
      }
      if (!times_.empty() && !(number.front() > times_.back())) {
        return fail("the time " + fields[i] + " is not after that of the line before");
      }
      times_.push_back(number.front());
    }
  }
  return true;
}

bool TorqueTable::advance(double time, double slack, std::vector<double>& torques) {
  const std::size_t before = next_;
  while (next_ < times_.size() && times_[next_] <= time + slack) ++next_;
  if (next_ == before) return false;
  for (std::size_t i = 0; i < joints_.size(); ++i) {
    torques[joints_[i]] = torques_[(next_ - 1) * joints_.size() + i];
  }
  return true;
}
