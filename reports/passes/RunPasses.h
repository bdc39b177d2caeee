// The passes of a run over all its classes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "conversions/passes/ClassPasses.h"
#include "conversions/passes/PassFacts.h"
#include "reports/outcomes/ClassUpdater.h"
#include "reports/passes/PassTexts.h"

namespace soca {

// In each pass, every class sees the texts that the pass before it left, of all classes alike. Most
// classes have nothing to do with others that change, so each is first updated alone, until nothing
// changes. Then the passes are made again together for those that others may reach. Only these have
// another result than alone. The rules ask of superclasses, and so a change of them counts:
// - which methods they define: for a class with one that is then redundant, or no longer;
// - whether a property is abstract in one of them: it no longer is if a conversion deletes it there
//   as a companion;
// - whether they are System objects, and have strict defaults: only in a cycle of superclasses can
//   the conversion of a list take that away.
// A method is taken away only if no derived class uses it, so a class is also reached by these.
//
// A pass of a class is the same as alone if nothing has reached it before. Otherwise the class is
// updated again, in the passes so far and in those that follow from them alone.
//
// Keeps little of each class, so that a run may have any number of them.
class RunPasses {
 public:
  // As ClassUpdater::updateInPasses; called by several threads.
  using Update =
      std::function<SingleUpdate(const std::string& className, const std::vector<PassView>& views)>;
  // Takes the result for the class with that number, in place of earlier ones.
  using Take = std::function<void(std::size_t number, SingleUpdate& update)>;

  // `jobs` is the number of threads. `take` is called by the thread that calls `make`.
  RunPasses(Update update, Take take, unsigned jobs)
      : update_(std::move(update)), take_(std::move(take)), jobs_(jobs) {}

  // Adds a class that was updated alone, by its name and its path in UTF-8. Returns its number,
  // counted from 0.
  std::size_t add(std::string_view className, const PassFacts& facts, std::string_view path);

  // Makes the passes of the classes that others reach, after all classes were added.
  // `goesOn` is asked before each pass.
  void make(const std::function<bool()>& goesOn);

  // Whether others may reach the class.
  bool isReached(std::size_t number) const;
  std::string nameOf(std::size_t number) const;

  // Whether a class that it derives from came to no rest.
  bool restsOnUnsettled(std::size_t number) const;

 private:
  // A class that was added. Its superclasses are a part of `superClasses_`.
  struct Class {
    std::uint64_t key = 0;
    std::uint64_t nameStart = 0;
    std::uint32_t nameSize = 0;
    std::uint32_t superCount = 0;
    std::uint64_t superStart = 0;
    MethodNames names;
    MethodSet takenMethods = 0;
    MethodSet changedMethods = 0;
    bool hasAbstractFinding = false;
    bool hasOldSuperClasses = false;
    bool isKept = false;
    // Its known passes, from its update alone, and its path.
    Spool::Place passes;
  };

  // A pass of a class as it will be unless others reach the class before.
  struct KnownPass {
    unsigned pass = 1;
    MethodNames names;
    MethodSet foundMethods = 0;
    bool isUnsettled = false;
    bool isChanged = false;
    Spool::Place text;
  };

  // A class that takes part in the passes.
  struct Member {
    bool isReached = false;
    bool hasChanged = false;
    bool isUnsettled = false;
    // Whether its superclasses have gained or lost something that concerns it, since a pass last
    // looked at it.
    bool isTouched = false;
    // The members that any change of it may concern, whatever their methods are.
    std::vector<std::size_t> heirs;
    std::string file;
    MethodNames names;
    // With the uses that were known when they were made.
    std::vector<KnownPass> known;
    std::vector<MethodUse> knownUses;
    // The number of members that it derives from and that define each method.
    std::array<std::uint32_t, mostMethods> definedAbove{};
    // The passes that looked at it, with the uses of its methods.
    std::vector<std::pair<unsigned, std::vector<MethodUse>>> looks;
  };

  using Numbers = std::vector<std::size_t>;
  using Uses = std::unordered_map<std::size_t, std::vector<MethodUse>>;

  void index();
  void addClassesBetween();
  std::optional<std::size_t> find(std::uint64_t key) const;
  Numbers superClassesOf(std::size_t number) const;
  // All that it derives from, nearest first, without itself.
  Numbers ancestorsOf(std::size_t number) const;
  void findDerived();
  // Whether each class is in a cycle of superclasses, or derives from such a class.
  std::vector<bool> findCyclic() const;
  // Calls `visit` with each other class that derives from the class, directly or not.
  template <class Visit>
  void visitDerived(std::size_t number, const Visit& visit) const;
  MethodNames namesOfNow(std::size_t number) const;
  void findMembers();
  // Appends a class to `open` that is reached for the first time.
  void addMember(std::size_t number, bool isReached, Numbers& open);
  void addHeir(std::size_t number, std::size_t heir, Numbers& open);
  // The classes that depend on the methods of this one, or it on their uses.
  void reachByMethods(std::size_t number, Numbers& open);
  // The superclasses because of which its properties are abstract.
  void reachByProperties(std::size_t number, Numbers& open);
  // Counts the methods that the class defines for those that derive from it.
  void countDefined(std::size_t number, MethodSet defined, int change);
  // The uses of each member's methods by the classes that derive from it, as the texts are now.
  Uses findUses() const;
  // The classes that the changes of the pass before may have reached.
  Numbers findActive(unsigned pass, Uses& uses) const;
  // Whether the known pass of the class is right.
  bool isKnown(const Member& member, unsigned pass) const;
  // Returns false if there is nothing left to look at.
  bool makePass(unsigned pass);
  // Updates the classes again, up to the pass and beyond.
  void updateAgain(const Numbers& numbers);
  std::vector<KnownPass> store(const std::vector<PassRecord>& records);
  // Makes the known pass that of the run.
  void takePass(std::size_t number, unsigned pass);
  // What the class sees in each pass that looks at it. Safe to use from several threads.
  std::vector<PassView> viewsOf(std::size_t number);
  PassView viewOf(std::size_t number, unsigned pass, const std::vector<MethodUse>& uses);

  Update update_;
  Take take_;
  unsigned jobs_;
  std::vector<Class> classes_;
  // The number of those that were added by the client.
  std::size_t added_ = 0;
  std::string names_;
  std::vector<std::uint64_t> superClasses_;
  // The numbers of the classes by their keys.
  std::vector<std::pair<std::uint64_t, std::uint32_t>> byKey_;
  // The classes that derive from each directly: those of class `i` are from `derivedStarts_[i]`.
  std::vector<std::uint32_t> derived_;
  std::vector<std::uint32_t> derivedStarts_;
  std::unordered_map<std::size_t, Member> members_;
  PassTexts texts_;
};

}  // namespace soca
