// A list of records that reads those from the state file one by one, when
// first used: a command that reads or changes a few of many pays for those few.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
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
//
// A copy costs what the number of elements does over 256: the elements are
// kept in blocks of 256, which copies share until one of them changes a
// block (it then copies that block's texts and pointers, and the records it
// changes). A batch keeps the host as it was before each change this way
// without copying a list of thousands.
//
// Each record has a key, by which KeyIndex finds it: a `name` for records
// that have one, else what `ListKey(T const&)`, declared beside the record,
// returns. The codec defines, for argument-dependent lookup,
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
  LazyList(LazyList const&) = default;
  LazyList(LazyList&&) noexcept = default;
  LazyList& operator=(LazyList const&) = default;
  LazyList& operator=(LazyList&&) noexcept = default;
  ~LazyList() = default;

  size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  void reserve(size_t) {}

  T& operator[](size_t i) { return Edit(i); }
  T const& operator[](size_t i) const { return Get(i); }
  T& at(size_t i) { return Edit(Checked(i)); }
  T const& at(size_t i) const { return Get(Checked(i)); }
  T& front() { return Edit(0); }
  T const& front() const { return Get(0); }
  T& back() { return Edit(size() - 1); }
  T const& back() const { return Get(size() - 1); }

  iterator begin() { return {this, 0}; }
  iterator end() { return {this, Signed(size())}; }
  const_iterator begin() const { return {this, 0}; }
  const_iterator end() const { return {this, Signed(size())}; }
  const_iterator cbegin() const { return begin(); }
  const_iterator cend() const { return end(); }

  void push_back(T record) { insert(end(), std::move(record)); }
  T& emplace_back() {
    push_back(T{});
    return Edit(size_ - 1);
  }
  iterator insert(const_iterator at, T record) {
    auto const index = static_cast<size_t>(at.index_);
    auto added = std::make_shared<T>(std::move(record));
    if (index == size_ && (size_ % kBlock) != 0) {
      // Into the last block, which has room.
      Block& block = Own(size_ / kBlock);
      block.Records();
      block.texts.emplace_back();
      block.records.push_back(added);
      block.Note(KeyOf(*added));
      ++size_;
    } else {
      Slots tail = TakeFrom(index / kBlock * kBlock);
      tail.insert(tail.begin() + static_cast<difference_type>(index % kBlock),
                  Slot{{}, std::move(added)});
      Append(std::move(tail));
    }
    return {this, at.index_};
  }
  iterator erase(const_iterator at) { return erase(at, at + 1); }
  iterator erase(const_iterator first, const_iterator last) {
    auto const from = static_cast<size_t>(first.index_);
    auto const to = static_cast<size_t>(last.index_);
    if (from == to) return {this, first.index_};
    size_t const start = from / kBlock * kBlock;
    Slots tail = TakeFrom(start);
    tail.erase(tail.begin() + static_cast<difference_type>(from - start),
               tail.begin() + static_cast<difference_type>(to - start));
    Append(std::move(tail));
    return {this, first.index_};
  }
  void pop_back() { erase(end() - 1); }
  void clear() {
    blocks_.clear();
    size_ = 0;
  }

  // The name of record `i`, without reading the rest of it when its text
  // starts with the name, as the library writes it.
  std::string_view NameAt(size_t i) const {
    auto const& [block, at] = Locate(i);
    if (!block.records.empty() && block.records[at]) return block.records[at]->name;
    constexpr std::string_view kStart = "{\"name\":\"";
    std::string_view text = block.texts[at];
    if (text.starts_with(kStart)) {
      for (size_t end = kStart.size(); end < text.size() && text[end] != '\\'; ++end) {
        if (text[end] == '"') return text.substr(kStart.size(), end - kStart.size());
      }
    }
    return Get(i).name;
  }

  // Whether record `i` is named `name`: NameAt(i) == name, looking at no
  // more of its text than it takes to tell.
  bool NameIs(size_t i, std::string_view name) const {
    auto const& [block, at] = Locate(i);
    if (!block.records.empty() && block.records[at]) return block.records[at]->name == name;
    constexpr std::string_view kStart = "{\"name\":\"";
    std::string_view const text = block.texts[at];
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

  // The records whose key is `key`, in order, for `visit` (which returns
  // true to stop); it skips, without reading them, the blocks that hold no
  // such key. Returns the index it stopped at, or size().
  template <class Visit>
  size_t KeyIndex(std::string_view key, Visit const& visit) const {
    auto const bits = Filter::BitsOf(key);
    for (size_t b = 0; b < blocks_.size(); ++b) {
      Block const& block = *blocks_[b];
      if (!block.filter) {
        block.filter = std::make_unique<Filter>();
        for (size_t at = 0; at < block.texts.size(); ++at) {
          block.filter->Add(Filter::BitsOf(KeyAt(b * kBlock + at)));
        }
      }
      if (!block.filter->MayHold(bits)) continue;
      for (size_t at = 0; at < block.texts.size(); ++at) {
        size_t const i = b * kBlock + at;
        if (KeyAt(i) == key && visit(i)) return i;
      }
    }
    return size_;
  }

  // The text record `i` was loaded from while no element access has read it;
  // empty otherwise.
  std::string_view TextAt(size_t i) const {
    auto const& [block, at] = Locate(i);
    return !block.records.empty() && block.records[at] ? std::string_view() : block.texts[at];
  }

  // Makes the list the records that `texts` give, each one record's JSON
  // text, in text that `owner` keeps.
  void AssignTexts(std::vector<std::string_view> const& texts, std::shared_ptr<void const> owner) {
    clear();
    owner_ = std::move(owner);
    for (size_t start = 0; start < texts.size(); start += kBlock) {
      auto block = std::make_shared<Block>();
      size_t const end = std::min(texts.size(), start + kBlock);
      block->texts.assign(texts.begin() + static_cast<difference_type>(start),
                          texts.begin() + static_cast<difference_type>(end));
      blocks_.push_back(std::move(block));
    }
    size_ = texts.size();
  }

  // Records are equal when their texts are, or else when they read equal.
  bool operator==(LazyList const& other) const {
    if (size() != other.size()) return false;
    for (size_t i = 0; i < size(); ++i) {
      std::string_view a = TextAt(i);
      if (!a.empty() && a == other.TextAt(i)) continue;
      if (!(Get(i) == other.Get(i))) return false;
    }
    return true;
  }

 private:
  static constexpr size_t kBlock = 256;

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

    reference operator*() const { return (*list_)[static_cast<size_t>(index_)]; }
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

  // Which keys a block may hold: three bits of one of 128 words per key, so
  // that telling costs one word (about one block in a thousand is looked
  // through in vain).
  struct Filter {
    struct Bits {
      uint32_t word;
      uint64_t mask;
    };
    std::array<uint64_t, 128> words{};
    static Bits BitsOf(std::string_view key) {
      uint64_t const hash = std::hash<std::string_view>{}(key) * 0x9e3779b97f4a7c15u;
      return {static_cast<uint32_t>(hash >> 57),
              uint64_t{1} << (hash & 63) | uint64_t{1} << (hash >> 6 & 63) |
                  uint64_t{1} << (hash >> 12 & 63)};
    }
    void Add(Bits const& bits) { words[bits.word] |= bits.mask; }
    bool MayHold(Bits const& bits) const { return (words[bits.word] & bits.mask) == bits.mask; }
  };

  // Up to kBlock elements: the text of each (empty for one added), and none
  // or one record (or null) for each text. Shared by copies of the list
  // while none changes it.
  struct Block {
    std::vector<std::string_view> texts;
    std::vector<std::shared_ptr<T>> records;
    // The keys of its records, made when first asked, dropped by a change.
    mutable std::unique_ptr<Filter> filter;

    Block() = default;
    Block(Block const& other)
        : texts(other.texts),
          records(other.records),
          filter(other.filter ? std::make_unique<Filter>(*other.filter) : nullptr) {}
    std::vector<std::shared_ptr<T>>& Records() {
      if (records.empty()) records.resize(texts.size());
      return records;
    }
    void Note(std::string_view key) {
      if (filter) filter->Add(Filter::BitsOf(key));
    }
  };

  struct Slot {
    std::string_view text;
    std::shared_ptr<T> record;
  };
  using Slots = std::vector<Slot>;

  static difference_type Signed(size_t n) { return static_cast<difference_type>(n); }

  size_t Checked(size_t i) const {
    if (i >= size()) throw std::out_of_range("LazyList::at");
    return i;
  }

  std::pair<Block&, size_t> Locate(size_t i) const { return {*blocks_[i / kBlock], i % kBlock}; }

  static std::string_view KeyOf(T const& record) {
    if constexpr (requires { record.name; }) {
      return record.name;
    } else {
      return ListKey(record);
    }
  }

  std::string_view KeyAt(size_t i) const {
    if constexpr (requires(T const& record) { record.name; }) {
      return NameAt(i);
    } else {
      return ListKey(Get(i));
    }
  }

  // Block `b`, this list's own: copied first when another list shares it.
  Block& Own(size_t b) {
    std::shared_ptr<Block>& block = blocks_[b];
    if (block.use_count() > 1) block = std::make_shared<Block>(*block);
    return *block;
  }

  // Record `i` to read, read from its text if need be (into the block, which
  // copies that share it then see it read too).
  T const& Get(size_t i) const {
    auto [block, at] = Locate(i);
    std::shared_ptr<T>& slot = block.Records()[at];
    if (!slot) {
      auto record = std::make_shared<T>();
      ReadRecordText(block.texts[at], i, *record);
      slot = std::move(record);
    }
    return *slot;
  }

  // Record `i` to change: this list's own, in a block of its own.
  T& Edit(size_t i) {
    Get(i);
    Block& block = Own(i / kBlock);
    block.filter.reset();
    std::shared_ptr<T>& slot = block.records[i % kBlock];
    if (slot.use_count() > 1) slot = std::make_shared<T>(*slot);
    return *slot;
  }

  // Removes the elements from `start` (the start of a block) on and returns
  // them.
  Slots TakeFrom(size_t start) {
    Slots slots;
    slots.reserve(size_ - start + 1);
    for (size_t b = start / kBlock; b < blocks_.size(); ++b) {
      Block const& block = *blocks_[b];
      for (size_t at = 0; at < block.texts.size(); ++at) {
        slots.push_back({block.texts[at], block.records.empty() ? nullptr : block.records[at]});
      }
    }
    blocks_.resize(start / kBlock);
    size_ = start;
    return slots;
  }

  // Adds `slots` at the end, which is the end of a full block.
  void Append(Slots slots) {
    for (size_t start = 0; start < slots.size(); start += kBlock) {
      auto block = std::make_shared<Block>();
      size_t const end = std::min(slots.size(), start + kBlock);
      bool const any = std::any_of(slots.begin() + Signed(start), slots.begin() + Signed(end),
                                   [](Slot const& slot) { return slot.record != nullptr; });
      for (size_t i = start; i < end; ++i) {
        block->texts.push_back(slots[i].text);
        if (any) block->records.push_back(std::move(slots[i].record));
      }
      blocks_.push_back(std::move(block));
    }
    size_ += slots.size();
  }

  std::vector<std::shared_ptr<Block>> blocks_;
  size_t size_ = 0;
  std::shared_ptr<void const> owner_;  // keeps what the texts point into
};

}  // namespace OrvkCtl::Sim
