// A list of records that reads those from the state file one by one, when
// first used: a command that reads or changes a few of many pays for those few.
#pragma once

#include <compare>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace OrvkCtl::Sim {

// Reads and changes as a std::vector<T> does. A record loaded from the state
// file stays as its JSON text (a view into text that `owner` keeps) until an
// element access reads it; a new record is a record from the start.
// `T` has a std::string `name`, and the codec defines, for argument-dependent
// lookup,
//   void ReadRecordText(std::string_view text, size_t index, T& out);
// which throws HostCtlException when the text is not a record.
template <class T>
class LazyList {
  template <bool kConst>
  class Iterator;

 public:
  using value_type = T;
  using size_type = size_t;
  using difference_type = std::ptrdiff_t;
  using reference = T&;
  using const_reference = T const&;
  using iterator = Iterator<false>;
  using const_iterator = Iterator<true>;

  LazyList() = default;
  LazyList(std::initializer_list<T> records) {
    for (auto const& record : records) push_back(record);
  }
  LazyList(LazyList const& other) : texts_(other.texts_), owner_(other.owner_) {
    records_.reserve(other.records_.size());
    for (auto const& record : other.records_) {
      records_.push_back(record ? std::make_unique<T>(*record) : nullptr);
    }
  }
  LazyList(LazyList&&) noexcept = default;
  LazyList& operator=(LazyList const& other) {
    if (this != &other) *this = LazyList(other);
    return *this;
  }
  LazyList& operator=(LazyList&&) noexcept = default;
  ~LazyList() = default;

  size_t size() const { return texts_.size(); }
  bool empty() const { return texts_.empty(); }
  void reserve(size_t count) {
    texts_.reserve(count);
    records_.reserve(count);
  }

  T& operator[](size_t i) { return Read(i); }
  T const& operator[](size_t i) const { return Read(i); }
  T& at(size_t i) { return Read(Checked(i)); }
  T const& at(size_t i) const { return Read(Checked(i)); }
  T& front() { return Read(0); }
  T const& front() const { return Read(0); }
  T& back() { return Read(size() - 1); }
  T const& back() const { return Read(size() - 1); }

  iterator begin() { return {this, 0}; }
  iterator end() { return {this, Signed(size())}; }
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, Signed(size())}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }

  void push_back(T record) { insert(end(), std::move(record)); }
  T& emplace_back() {
    push_back(T{});
    return *records_.back();
  }
  iterator insert(const_iterator at, T record) {
    // Room for more at once: a list read from the file is as long as it was.
    if (texts_.size() == texts_.capacity()) texts_.reserve(texts_.size() + texts_.size() / 8 + 4);
    Records();
    texts_.insert(texts_.begin() + at.index_, std::string_view());
    records_.insert(records_.begin() + at.index_, std::make_unique<T>(std::move(record)));
    return {this, at.index_};
  }
  iterator erase(const_iterator at) { return erase(at, at + 1); }
  iterator erase(const_iterator first, const_iterator last) {
    texts_.erase(texts_.begin() + first.index_, texts_.begin() + last.index_);
    if (!records_.empty()) {
      records_.erase(records_.begin() + first.index_, records_.begin() + last.index_);
    }
    return {this, first.index_};
  }
  void pop_back() { erase(end() - 1); }
  void clear() {
    texts_.clear();
    records_.clear();
  }

  // The name of record `i`, without reading the rest of it when its text
  // starts with the name, as the library writes it.
  std::string_view NameAt(size_t i) const {
    if (!records_.empty() && records_[i]) return records_[i]->name;
    constexpr std::string_view kStart = "{\"name\":\"";
    std::string_view text = texts_[i];
    if (text.starts_with(kStart)) {
      for (size_t end = kStart.size(); end < text.size() && text[end] != '\\'; ++end) {
        if (text[end] == '"') return text.substr(kStart.size(), end - kStart.size());
      }
    }
    return Read(i).name;
  }

  // Whether record `i` is named `name`: NameAt(i) == name, looking at no
  // more of its text than it takes to tell.
  bool NameIs(size_t i, std::string_view name) const {
    if (!records_.empty() && records_[i]) return records_[i]->name == name;
    constexpr std::string_view kStart = "{\"name\":\"";
    std::string_view const text = texts_[i];
    // The text has the name's bytes as they are, up to its first escape: a
    // text that differs from `name` before one differs in name. (A backslash
    // of `name` could match the start of an escape: that is read.)
    if (text.starts_with(kStart) && name.find('\\') == std::string_view::npos) {
      std::string_view const stored = text.substr(kStart.size());
      size_t k = 0;
      while (k < name.size() && k < stored.size() && stored[k] == name[k]) ++k;
      if (k < stored.size() && stored[k] != '\\') return k == name.size() && stored[k] == '"';
    }
    return NameAt(i) == name;
  }

  // The text record `i` was loaded from while no element access has read it;
  // empty otherwise.
  std::string_view TextAt(size_t i) const {
    return !records_.empty() && records_[i] ? std::string_view() : texts_[i];
  }

  // Makes the list the records that `texts` give, each one record's JSON
  // text, in text that `owner` keeps.
  void AssignTexts(std::vector<std::string_view> texts, std::shared_ptr<void const> owner) {
    texts_ = std::move(texts);
    records_.clear();
    owner_ = std::move(owner);
  }

  // Records are equal when their texts are, or else when they read equal.
  bool operator==(LazyList const& other) const {
    if (size() != other.size()) return false;
    for (size_t i = 0; i < size(); ++i) {
      std::string_view a = TextAt(i);
      if (!a.empty() && a == other.TextAt(i)) continue;
      if (!(Read(i) == other.Read(i))) return false;
    }
    return true;
  }

 private:
  template <bool kConst>
  class Iterator {
    using List = std::conditional_t<kConst, LazyList const, LazyList>;

   public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = T;
    using difference_type = std::ptrdiff_t;
    using pointer = std::conditional_t<kConst, T const*, T*>;
    using reference = std::conditional_t<kConst, T const&, T&>;

    Iterator() = default;
    Iterator(List* list, difference_type index) : list_(list), index_(index) {}
    operator Iterator<true>() const { return {list_, index_}; }

    reference operator*() const { return list_->Read(static_cast<size_t>(index_)); }
    pointer operator->() const { return &**this; }
    reference operator[](difference_type n) const { return *(*this + n); }
    Iterator& operator++() { return ++index_, *this; }
    Iterator operator++(int) { return {list_, index_++}; }
    Iterator& operator--() { return --index_, *this; }
    Iterator operator--(int) { return {list_, index_--}; }
    Iterator& operator+=(difference_type n) { return index_ += n, *this; }
    Iterator& operator-=(difference_type n) { return index_ -= n, *this; }
    Iterator operator+(difference_type n) const { return {list_, index_ + n}; }
    friend Iterator operator+(difference_type n, Iterator at) { return at + n; }
    Iterator operator-(difference_type n) const { return {list_, index_ - n}; }
    difference_type operator-(Iterator const& other) const { return index_ - other.index_; }
    bool operator==(Iterator const& other) const { return index_ == other.index_; }
    auto operator<=>(Iterator const& other) const { return index_ <=> other.index_; }

   private:
    friend class LazyList;
    List* list_ = nullptr;
    difference_type index_ = 0;
  };

  static difference_type Signed(size_t n) { return static_cast<difference_type>(n); }

  size_t Checked(size_t i) const {
    if (i >= size()) throw std::out_of_range("LazyList::at");
    return i;
  }

  // The records, one per text, made once any is read or added.
  std::vector<std::unique_ptr<T>>& Records() const {
    if (records_.empty() && !texts_.empty()) {
      records_.reserve(texts_.capacity());
      records_.resize(texts_.size());
    }
    return records_;
  }

  T& Read(size_t i) const {
    std::unique_ptr<T>& slot = Records()[i];
    if (!slot) {
      auto record = std::make_unique<T>();
      ReadRecordText(texts_[i], i, *record);
      slot = std::move(record);
    }
    return *slot;
  }

  // The text of each record loaded and not read since (empty for one added),
  // and the records read or added: none, or one (or null) for each text.
  std::vector<std::string_view> texts_;
  mutable std::vector<std::unique_ptr<T>> records_;
  std::shared_ptr<void const> owner_;  // keeps what the texts point into
};

}  // namespace OrvkCtl::Sim
