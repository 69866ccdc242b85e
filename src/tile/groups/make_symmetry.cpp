// The one current symmetry object, and the factory by group id.
#include <new>

#include "tile/groups/groups.h"

namespace fancy {
namespace {

std::unique_ptr<Symmetry> gCurrentSymmetry;

// Allocation failure gives null rather than an exception; the object is
// owned from the moment it exists.
template <typename Group>
std::unique_ptr<Symmetry> New() {
  return std::unique_ptr<Symmetry>(new (std::nothrow) Group());
}

}  // namespace

std::unique_ptr<Symmetry> CreateSymmetry(int32_t groupId) {
  switch (groupId) {
    case kGroupP1: return New<P1>();
    case kGroupCm: return New<Cm>();
    case kGroupPm: return New<Pm>();
    case kGroupP2: return New<P2>();
    case kGroupPg: return New<Pg>();
    case kGroupPgg: return New<Pgg>();
    case kGroupPmm: return New<Pmm>();
    case kGroupP4: return New<P4>();
    case kGroupP4g: return New<P4g>();
    case kGroupP4m: return New<P4m>();
    case kGroupCmm: return New<Cmm>();
    case kGroupPmg: return New<Pmg>();
    case kGroupP3: return New<P3>();
    case kGroupP3m1: return New<P3m1>();
    case kGroupP31m: return New<P31m>();
    case kGroupP6: return New<P6>();
    case kGroupP6m: return New<P6m>();
    default: return nullptr;
  }
}

Symmetry* MakeSymmetry(int32_t groupId) {
  gCurrentSymmetry.reset();
  gCurrentSymmetry = CreateSymmetry(groupId);
  return gCurrentSymmetry.get();
}

Symmetry* CurrentSymmetry() { return gCurrentSymmetry.get(); }

void ReleaseSymmetry() { gCurrentSymmetry.reset(); }

}  // namespace fancy
