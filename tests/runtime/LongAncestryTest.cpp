// Classes with long ancestries: under a view of the files, when the class runtime caches them, the
// results are those of a separate walk for each class.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "platform/paths/FileView.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/Class.h"
#include "platform/runtime/LongAncestry.h"
#include "platform/runtime/MetaClass.h"
#include "tests/platform/TemporaryFolder.h"

namespace {

using tarn::internal::makeInterned;

constexpr std::size_t classCount = 45;

std::string nameOf(std::size_t number) { return fmt::format("C{}", number); }

// Chains, cycles and cross-links of classes, some of which do not exist.
class World {
 public:
  explicit World(unsigned seed) : random_(seed), isCyclic_(chance(60)), ofBase_(pick(4)) {
    PathDispatcher::getDispatcher().setClassPath({root_.path()});
    for (std::size_t number = 0; number < classCount; ++number) {
      root_.write(nameOf(number) + ".vlm", textOf(number));
    }
  }

  std::string pathOf(std::size_t number) const {
    return root_.path() + "/" + nameOf(number) + ".vlm";
  }

  // Different in each call.
  std::string textOf(std::size_t number) {
    std::vector<std::string> supers;
    if (number + 1 < classCount || isCyclic_) supers.push_back(nameOf((number + 1) % classCount));
    const bool isLast = number + 1 == classCount;
    if (isLast ? chance(60) : pick(100) < ofBase_) supers.emplace_back("velum.System");
    if (chance(15)) supers.push_back(nameOf(pick(isCyclic_ ? classCount : number + 1)));
    if (chance(8)) supers.emplace_back("velum.system.mixin.Propagates");
    if (chance(3)) supers.push_back(fmt::format("nowhere.N{}", pick(3)));
    if (supers.empty()) supers.emplace_back("handle");
    if (chance(20)) std::swap(supers.front(), supers.back());
    return fmt::format(
        "classdef ({}) C < {}\nproperties (Abstract = {})\nA{}\nend\n"
        "methods\nfunction m{}(obj),end\nend\nend\n",
        chance(1) ? "StrictDefaults" : "Hidden", fmt::join(supers, " & "),
        chance(4) ? "true" : "false", pick(3), pick(20));
  }

  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
  }
  bool chance(std::size_t percent) { return pick(100) < percent; }

 private:
  TemporaryFolder root_;
  std::mt19937 random_;
  bool isCyclic_;
  // The number of classes in a hundred that have the base as a superclass.
  std::size_t ofBase_;
};

// The results of all queries about a class.
std::string answersOf(const std::string& name) {
  std::ostringstream answers;
  const auto pointer = tarn::COSClass::getClassInterface(makeInterned(name));
  const auto* object = tarn::COSClassPtrHelper::getObject(pointer);
  for (const char* base :
       {"velum.system.coder.System", "velum.system.SystemImpl", "handle", "C7"}) {
    answers << object->isDerivedFrom(makeInterned(base));
  }
  const auto metaClass = sotarn::MetaClass::fromID(makeInterned(name));
  answers << metaClass.isStrictDefaultsClass() << metaClass.isMethodDefinedInSuperClass("m0");
  for (const char* property : {"A0", "A1", "A2"}) {
    answers << metaClass.getProperty(property).isAbstractInAnyClass()
            << metaClass.getProperty(property).isDependent();
  }
  for (const auto& super : metaClass.getSuperClasses()) answers << ' ' << super.getName();
  return answers.str();
}

class LongAncestries : public testing::TestWithParam<unsigned> {};

TEST_P(LongAncestries, ResultsEqualThoseOfAWalkFromEachClass) {
  World world(GetParam());
  const fl::filesystem::FileView view;
  std::size_t known = 0;
  for (std::size_t i = 0; i < classCount; ++i) {
    // The walk starts at the first class that is queried.
    const std::size_t number = (i * 17 + GetParam()) % classCount;
    const std::string name = nameOf(number);
    const auto inView = [&] {
      const fl::filesystem::FileView::Scope scope(view);
      return answersOf(name);
    };
    EXPECT_EQ(inView(), answersOf(name)) << name;
    {
      const fl::filesystem::FileView::Scope scope(view);
      if (sotarn::findLongAncestry(name)) ++known;
    }
    const std::string text = world.textOf(number);
    const fl::filesystem::OverlayScope over(world.pathOf(number),
                                            fl::ustring(text.begin(), text.end()));
    EXPECT_EQ(inView(), answersOf(name)) << name << " with the text\n" << text;
    const fl::filesystem::OverlayScope overOther(world.pathOf(world.pick(classCount)),
                                                 fl::ustring(text.begin(), text.end()));
    EXPECT_EQ(inView(), answersOf(name)) << name << " with a text over another class too";
  }
  EXPECT_GT(known, 0U);
}

INSTANTIATE_TEST_SUITE_P(Worlds, LongAncestries, testing::Range(0U, 30U));

}  // namespace
