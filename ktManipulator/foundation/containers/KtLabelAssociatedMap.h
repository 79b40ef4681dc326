#pragma once

#include <utility>

#include "ktManipulator/foundation/containers/KtXmlMapType.h"
#include "ktManipulator/foundation/containers/KtXmlVectorType.h"
#include "ktManipulator/foundation/tokens/KtManipTokens.h"
#include "ktManipulator/foundation/xml/KtXmlCompoundType.h"

/// A persistent symmetric table of values, indexed by pairs of labels.
///
/// Only the lower triangle is stored: row i has i + 1 values, and (a, b) and (b, a) are one cell.
///
/// @tparam E  a persistent basic type
template <class E>
class KT_EXPORT KtLabelAssociatedMap
    : public KtXmlPersistent<KtLabelAssociatedMap<E>, KtXmlCompoundType> {
 public:
  /// The empty table.
  KtLabelAssociatedMap() = default;

  /// Registers the members, in file order.
  void registerComponents() override {
    this->registerComponent(KtManip::KtLabelAssociatedMapToken, &rows_);
    this->registerComponent(KtManip::KtLabelAssociatedMapIdentifierToken, &labels_);
  }

  /// Adds n + 1 rows, and the label "null", which names the last of them; the other rows have no
  /// label. Meant for an empty table; on any other, rows that are there get longer, and the added
  /// ones stay empty.
  virtual void resize(KtU32 count);
  /// Sets the value of two labels; false and a message if one of them is unknown.
  virtual bool setValue(const KtString& label1, const KtString& label2, E value);
  /// Adds a row of default values for the label, unless it is known.
  virtual void addLabel(const KtString& label);
  /// The value of two labels; a default value and a message if one of them is unknown.
  virtual E value(const KtString& label1, const KtString& label2) const;
  /// The value of two rows; a default value and a message if there is no such cell.
  virtual E valueByIndex(KtU32 row, KtU32 column) const;
  /// Swaps the indices so that the first is not the smaller one; true.
  virtual bool makeIndicesCompatible(KtU32& row, KtU32& column) const {
    if (row < column) std::swap(row, column);
    return true;
  }
  /// Sets the value of two rows; false and a message if there is no such cell.
  bool setValueByIndex(KtU32 row, KtU32 column, const E& value);

  bool operator==(const KtLabelAssociatedMap& other) const {
    return rows_ == other.rows_ && labels_ == other.labels_;
  }

  static const KtToken& classToken() { return KtManip::KtLabelAssociatedMapToken; }

 private:
  using Label = KtXmlBasicType<std::string>;

  bool rowsOf(const KtString& label1, const KtString& label2, KtU32& row, KtU32& column) const;
  bool hasCell(KtU32 row, KtU32 column) const {
    return row < rows_.size() && column < rows_[row].size();
  }

  KtXmlVectorType<KtXmlVectorType<E>> rows_;
  KtXmlMapType<Label, KtXmlBasicType<KtU32>> labels_;
};

template <class E>
void KtLabelAssociatedMap<E>::resize(KtU32 count) {
  // In 64 bits: the largest count has one row more than 32 bits can tell.
  const std::uint64_t rows = std::uint64_t{count} + 1;
  for (std::uint64_t i = 0; i < rows; ++i) {
    rows_.pushBack({});
    auto& row = rows_[static_cast<KtU32>(i)].vectorContainer();
    row.resize(row.size() + i + 1);
  }
  labels_.add(Label("null"), count);
}

template <class E>
bool KtLabelAssociatedMap<E>::rowsOf(const KtString& label1, const KtString& label2, KtU32& row,
                                     KtU32& column) const {
  const auto* first = labels_.lookupPointer(label1);
  const auto* second = labels_.lookupPointer(label2);
  if (first == nullptr || second == nullptr) return false;
  row = *first;
  column = *second;
  return true;
}

template <class E>
bool KtLabelAssociatedMap<E>::setValue(const KtString& label1, const KtString& label2, E value) {
  KtU32 row = 0;
  KtU32 column = 0;
  if (!rowsOf(label1, label2, row, column)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtLabelAssociatedMap::setValue-->label (%s) does not exist",
                                label1.c_str());
    return false;
  }
  return setValueByIndex(row, column, value);
}

template <class E>
void KtLabelAssociatedMap<E>::addLabel(const KtString& label) {
  if (labels_.lookupPointer(label) != nullptr) return;
  const KtU32 row = rows_.size();
  rows_.pushBack(KtXmlVectorType<E>(row + 1));
  labels_.add(label, row);
}

template <class E>
E KtLabelAssociatedMap<E>::value(const KtString& label1, const KtString& label2) const {
  KtU32 row = 0;
  KtU32 column = 0;
  if (!rowsOf(label1, label2, row, column)) {
    Kt::Print::instance().write(Kt::Print::kError,
                                "KtLabelAssociatedMap::value-->label does not exist");
    return E();
  }
  return valueByIndex(row, column);
}

template <class E>
E KtLabelAssociatedMap<E>::valueByIndex(KtU32 row, KtU32 column) const {
  makeIndicesCompatible(row, column);
  if (hasCell(row, column)) return rows_[row][column];
  Kt::Print::instance().write(
      Kt::Print::kError,
      "KtLabelAssociatedMap::setLinkCollisionCanditate link value (%u) exceeds link map "
      "dimension\n",
      row);
  return E();
}

template <class E>
bool KtLabelAssociatedMap<E>::setValueByIndex(KtU32 row, KtU32 column, const E& value) {
  makeIndicesCompatible(row, column);
  if (hasCell(row, column)) {
    rows_[row][column] = value;
    return true;
  }
  Kt::Print::instance().write(
      Kt::Print::kError,
      "KtLabelAssociatedMap::setValueByIndex value (%u) exceeds link map dimension\n", row);
  return false;
}

extern template class KtLabelAssociatedMap<KtXmlBasicType<double>>;
extern template class KtLabelAssociatedMap<KtXmlBasicType<bool>>;

/// A table of reals under its own name.
class KT_EXPORT KtLabelAssociatedRealMap
    : public KtXmlPersistent<KtLabelAssociatedRealMap,
                             KtLabelAssociatedMap<KtXmlBasicType<double>>> {
 public:
  bool operator==(const KtLabelAssociatedRealMap&) const = default;
  static const KtToken& classToken() { return KtManip::KtLabelAssociatedRealMapToken; }
};
