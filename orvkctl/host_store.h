// Persistence of the simulated host.
//
// The state lives in one JSON file: the path given by TOOLBASE_HOST_STATE, or
// $XDG_STATE_HOME/toolbase/host-state.json, or
// ~/.local/state/toolbase/host-state.json. It is opened when a command first
// touches the host; from then on the process holds a lock on it until it
// ends: shared while it only reads, alone from its first change on (the file
// is read again if another command changed it in between), so that
// concurrent commands see each other's changes whole. A missing file is
// seeded with DefaultHost(). Every change is written through at once,
// atomically. How the files are found, made, locked, read and replaced, and
// kept from other users: state_files.h.
//
// Areas. The file holds one top-level field of HostModel per line:
//   {"format":1,"layout":"compact","host":{
//   "hostname":"halden-01",
//   "firewall":{...},
//   ...
//   }}
// so a command parses only the areas it asks for and writes the others back
// verbatim. Records leave out the fields at their defaults. A change writes
// its areas from the model, except the elements of arrays it left alone,
// which it copies from the file's text: "layout":"compact" says that they
// are all as this library writes them. Any other layout of the same JSON
// (hand-edited, reformatted, or without that mark) still loads, by parsing
// it whole if need be; the next change writes every area anew. In a marked
// file, the lists of records a host may have thousands of (port
// groups, physical NICs: LazyList) are left as their elements' texts when
// loaded, each read when first used; a write copies the texts no one read,
// and writes the long runs it copies from where they are (HostDocument).
//
// Operations reach the store through HostBackend (host_backend.h), which it
// implements: a load reads the areas asked for, a commit writes its areas
// through at once, or at the end of a transaction. Inside a transaction a
// change works on the host itself: it copies the areas it names first, to
// take them back should it fail, and the transaction keeps each area as it
// was at its beginning and at the savepoint when a change first touches it
// after them. Lists of many records (LazyList) share their records with such
// copies, so a batch costs what its lines change, not the host per line.
//
// Adding a field to an area: add it to the area's struct (model_*.h), its
// JSON_RECORD line (json_*.cc), with its range or words when it has them,
// and its seed (seed_*.cc); nothing here changes. Adding an area: a member
// of HostModel, a bit in host_backend.h (and in kAreaAll), a row in the
// field table of host_json.cc, and a line in TakeAreas (host_store.cc).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host_backend.h"
#include "host_model.h"

namespace OrvkCtl::Sim {

// The state file this process uses.
std::string StatePath();

// The backend of the state file, for Backend().
std::unique_ptr<HostBackend> NewStateFileBackend();

// JSON conversion of a whole host, in the file's line layout; throws
// std::exception on a malformed document.
std::string HostToJson(HostModel const& host);
HostModel HostFromJson(std::string const& text);

// A text that belongs in a document before the document text's byte `at`:
// a long run the document does not copy, for writing from where it is.
struct TextPiece {
  size_t at;
  std::string_view text;
};

// Where a field's value text lies in a state document.
struct FieldSpan {
  uint64_t offset = 0;
  uint64_t size = 0;  // 0 when the field is absent
};

// A state document to write: `text` with `pieces` (in order) put in.
struct HostDocument {
  std::string text;
  std::vector<TextPiece> pieces;
  // Where each field's value is in the whole, in HostFields() order.
  std::vector<FieldSpan> spans;
  bool compact = true;  // says its records are all as this library writes them
  size_t Size() const;
  std::string Whole() const;
};

// What loading a member keeps of the text it read, for writing it again:
// the arrays of records read (by their address) and, opaque to the store,
// where each was in the text. A write copies the elements a change left
// alone (those still equal to that text) instead of writing them anew, so
// that a change to a large area costs little more than reading it.
struct ElementTexts {
  struct Source {
    void const* value;
    void const* parse;
  };
  std::unordered_map<void const*, Source> arrays;
  std::vector<std::shared_ptr<void const>> parses;  // keeps the sources
};

// The file's fields, one per line, for the store: the top-level members of
// HostModel in file order. Each converts one member alone.
struct HostField {
  std::string_view key;
  AreaSet area;
  // Replaces the member with the one `text` describes; throws std::exception
  // on malformed text and leaves `host` unchanged then. Notes in `texts`
  // (when given) the texts of the member's elements, views into `text`.
  // `in_place`: `text` is the whole of a string the caller owns, which may be
  // parsed where it is (it reads the same afterwards) instead of a copy.
  // `owner` (when given, with `texts`): keeps `text` as it is while it lives;
  // records of long lists (LazyList) are then read from it when first used.
  void (*load)(std::string_view text, HostModel& host, ElementTexts* texts, bool in_place,
               std::shared_ptr<void const> const& owner);
  // Appends the member as compact JSON text, on one line, copying from
  // `texts` (when given) what it can. Long runs of text copied as they are go
  // to `pieces` (when given) instead, to be written from where they are.
  void (*save)(HostModel const& host, ElementTexts const* texts, std::string& out,
               std::vector<TextPiece>* pieces);
};
std::vector<HostField> const& HostFields();

// Splits a state document into each field's value text (empty where absent),
// in HostFields() order; the views point into `text`. Takes the line layout
// as it is; a document laid out otherwise is parsed whole and `text`
// rewritten in lines. Throws std::exception when it is not a state document
// this version reads.
// `compact` (when given) tells whether the document says that its records
// are all as this library writes them.
std::vector<std::string_view> SplitHostDocument(std::string& text, bool* compact = nullptr);
// Reads a state document in the line layout through `read` (which fills up
// to the size given and returns how much it filled, 0 at the end), noting in
// `spans` where each field's value text is, in HostFields() order; it never
// holds more of the document at once than a small buffer. Returns false when
// the document is not in the line layout (`spans` is then of no use):
// SplitHostDocument on the whole text takes it from there.
bool ScanHostDocument(std::function<size_t(char*, size_t)> const& read,
                      std::vector<FieldSpan>& spans, bool* compact);

// The document of the given fields' value texts (empty ones are left out).
// `compact`: the texts are all as this library writes them. The fields of
// `loaded` areas are written from `host` instead (when given), copying from
// `element_texts` what they can.
std::string JoinHostDocument(std::vector<std::string_view> const& texts, bool compact = true,
                             HostModel const* host = nullptr, AreaSet loaded = 0,
                             ElementTexts const* element_texts = nullptr);
// The same, leaving long runs of text that it copies where they are: the
// field texts, the elements of lists, which `texts`, `host` and
// `element_texts` keep for as long as the document is used.
HostDocument ComposeHostDocument(std::vector<std::string_view> const& texts, bool compact,
                                 HostModel const& host, AreaSet loaded,
                                 ElementTexts const* element_texts);

}  // namespace OrvkCtl::Sim
