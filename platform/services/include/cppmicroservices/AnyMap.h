// AnyMap: string keys to Any values, the form of service properties and bundle manifests.
// A JSON object reads as nested AnyMaps, strings as std::string, integers as int (or long long
// when out of int's range), other numbers as double, booleans as bool, arrays as
// std::vector<Any> and null as an empty Any. Keys are ordered, so the printed form is stable.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <ostream>
#include <string>
#include <utility>

#include <cppmicroservices/Any.h>

namespace cppmicroservices {

class AnyMap {
public:
    using map_type = std::map<std::string, Any>;
    using key_type = map_type::key_type;
    using mapped_type = map_type::mapped_type;
    using value_type = map_type::value_type;
    using size_type = map_type::size_type;
    using iterator = map_type::iterator;
    using const_iterator = map_type::const_iterator;

    AnyMap() = default;
    AnyMap(std::initializer_list<value_type> values) : map_(values) {}

    iterator begin() noexcept { return map_.begin(); }
    iterator end() noexcept { return map_.end(); }
    const_iterator begin() const noexcept { return map_.begin(); }
    const_iterator end() const noexcept { return map_.end(); }
    const_iterator cbegin() const noexcept { return map_.cbegin(); }
    const_iterator cend() const noexcept { return map_.cend(); }

    bool empty() const noexcept { return map_.empty(); }
    size_type size() const noexcept { return map_.size(); }
    void clear() noexcept { map_.clear(); }

    Any& operator[](const key_type& key) { return map_[key]; }
    Any& operator[](key_type&& key) { return map_[std::move(key)]; }
    // std::out_of_range naming the key if it is absent.
    Any& at(const key_type& key);
    const Any& at(const key_type& key) const;

    iterator find(const key_type& key) { return map_.find(key); }
    const_iterator find(const key_type& key) const { return map_.find(key); }
    size_type count(const key_type& key) const { return map_.count(key); }
    bool contains(const key_type& key) const { return map_.contains(key); }

    std::pair<iterator, bool> insert(const value_type& value) { return map_.insert(value); }
    template <class... Args>
    std::pair<iterator, bool> emplace(Args&&... args) {
        return map_.emplace(std::forward<Args>(args)...);
    }
    size_type erase(const key_type& key) { return map_.erase(key); }

private:
    map_type map_;
};

// {key : value, ...}, strings unquoted; nested maps and vectors in the same form.
std::ostream& operator<<(std::ostream& os, const AnyMap& map);

}  // namespace cppmicroservices
