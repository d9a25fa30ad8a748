#pragma once

// The least of the standard library that the public headers name, for a target whose own is not at hand. Only
// declarations count here: nothing that is compiled against this is ever linked or run.

#include <stdint.h>

namespace std {

using ::int32_t;
using ::int64_t;

template <typename T>
T&& move(T& value);

class string {
 public:
  string();
  string(const char*);
  string(const string&);
  ~string();
  string& operator=(const string&);
};
bool operator==(const string&, const string&);

template <typename T>
class shared_ptr {
 public:
  shared_ptr();
  shared_ptr(const shared_ptr&);
  ~shared_ptr();
  shared_ptr& operator=(const shared_ptr&);
};

template <typename T>
class vector {
 public:
  vector();
  vector(const vector&);
  ~vector();
  vector& operator=(const vector&);
};

template <typename Key, typename Value>
class map {
 public:
  map();
  map(const map&);
  ~map();
  map& operator=(const map&);
};

template <typename... Alternatives>
class variant {
 public:
  variant();
  variant(const variant&);
  ~variant();
};

}  // namespace std
