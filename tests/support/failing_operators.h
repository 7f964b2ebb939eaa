// Replaces the global operator new and delete by ones that fail when a Fault says so. These are
// definitions: one source of a test binary includes them, and lets file operations ask must_fail()
// too.
#pragma once

#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/fault.h"

namespace {

struct Plan {
  std::size_t until_fault = 0;  // 0: nothing fails
  std::size_t faults_left = 0;
  bool fired = false;
};

std::array<Plan, 2> plans;
int pauses = 0;
std::size_t bytes_in_use = 0;
std::size_t most_bytes = 0;

Plan &plan_of(qdltest::Door door) {
  return plans[static_cast<std::size_t>(door)];
}

bool must_fail(qdltest::Door door) {
  Plan &plan = plan_of(door);
  if (plan.until_fault == 0 || pauses > 0)
    return false;
  if (plan.until_fault > 1) {
    --plan.until_fault;
    return false;
  }
  if (--plan.faults_left == 0)
    plan.until_fault = 0;
  plan.fired = true;
  return true;
}

void *allocate(std::size_t bytes, std::size_t alignment) noexcept {
  if (must_fail(qdltest::Door::kMemory))
    return nullptr;
  const std::size_t wanted = std::max<std::size_t>(bytes, 1);
  void *block = nullptr;
  if (alignment <= alignof(std::max_align_t))
    block = std::malloc(wanted);
  else
    block = std::aligned_alloc(alignment, (wanted + alignment - 1) / alignment * alignment);
  if (block != nullptr) {
    bytes_in_use += malloc_usable_size(block);
    if (pauses == 0)
      most_bytes = std::max(most_bytes, bytes_in_use);
  }
  return block;
}

void *allocate_or_throw(std::size_t bytes, std::size_t alignment) {
  void *block = allocate(bytes, alignment);
  if (block == nullptr)
    throw std::bad_alloc();
  return block;
}

void release(void *block) noexcept {
  if (block != nullptr)
    bytes_in_use -= malloc_usable_size(block);
  std::free(block);
}

constexpr std::size_t kUsual = alignof(std::max_align_t);

}  // namespace

void *operator new(std::size_t bytes) {
  return allocate_or_throw(bytes, kUsual);
}
void *operator new[](std::size_t bytes) {
  return allocate_or_throw(bytes, kUsual);
}
void *operator new(std::size_t bytes, const std::nothrow_t &) noexcept {
  return allocate(bytes, kUsual);
}
void *operator new[](std::size_t bytes, const std::nothrow_t &) noexcept {
  return allocate(bytes, kUsual);
}
void *operator new(std::size_t bytes, std::align_val_t alignment) {
  return allocate_or_throw(bytes, static_cast<std::size_t>(alignment));
}
void *operator new[](std::size_t bytes, std::align_val_t alignment) {
  return allocate_or_throw(bytes, static_cast<std::size_t>(alignment));
}
void *operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t &) noexcept {
  return allocate(bytes, static_cast<std::size_t>(alignment));
}
void *operator new[](std::size_t bytes, std::align_val_t alignment,
                     const std::nothrow_t &) noexcept {
  return allocate(bytes, static_cast<std::size_t>(alignment));
}
void operator delete(void *block) noexcept {
  release(block);
}
void operator delete[](void *block) noexcept {
  release(block);
}
void operator delete(void *block, std::size_t) noexcept {
  release(block);
}
void operator delete[](void *block, std::size_t) noexcept {
  release(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
  release(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
  release(block);
}
void operator delete(void *block, std::align_val_t) noexcept {
  release(block);
}
void operator delete[](void *block, std::align_val_t) noexcept {
  release(block);
}
void operator delete(void *block, std::size_t, std::align_val_t) noexcept {
  release(block);
}
void operator delete[](void *block, std::size_t, std::align_val_t) noexcept {
  release(block);
}
void operator delete(void *block, std::align_val_t, const std::nothrow_t &) noexcept {
  release(block);
}
void operator delete[](void *block, std::align_val_t, const std::nothrow_t &) noexcept {
  release(block);
}

namespace qdltest {

Fault::Fault(Door door, std::size_t n, Persistence persistence) : door_(door) {
  const std::size_t faults = persistence == Persistence::kOnce    ? 1
                             : persistence == Persistence::kTwice ? 2
                                                                  : SIZE_MAX;
  plan_of(door) = {n, faults, false};
}

Fault::~Fault() {
  plan_of(door_) = {};
}

bool Fault::fired() const {
  return plan_of(door_).fired;
}

PauseFaults::PauseFaults() {
  ++pauses;
}
PauseFaults::~PauseFaults() {
  --pauses;
}

PeakMemory::PeakMemory() : start_(bytes_in_use) {
  most_bytes = bytes_in_use;
}
std::size_t PeakMemory::bytes() const {
  return most_bytes - start_;
}

}  // namespace qdltest
