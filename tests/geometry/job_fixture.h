// For tests of operations that change all of a model or nothing.
#pragma once

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>

#include "support/fault.h"
#include "support/read_fixture.h"

namespace qdltest {

class JobFixture : public ReadFixture {
 protected:
  // Fails the uses that a job makes of memory and of files one after the other, each time in a new
  // model. A job that fails must say so and leave no file; `check` judges what it left in the model
  // and, where it gets through, what it has done.
  void sweep_job(const std::function<QDL_Record *()> &make,
                 const std::function<int(QDL_Record *)> &job,
                 const std::function<void(QDL_Record *, bool done)> &check,
                 std::initializer_list<Door> doors = {Door::kMemory, Door::kFile}) {
    for (const Door door : doors) {
      QDL_Record *model = nullptr;
      std::size_t files = 0;
      const std::size_t faults = sweep(
          door, Persistence::kOnce,
          [&] {
            {
              const PauseFaults pause;
              end_models();
              model = make();
              clear_messages();
              files = temporary_files().size();
            }
            return job(model);
          },
          [&](int result, bool fired) {
            EXPECT_TRUE(result == 1 || fired);
            EXPECT_EQ(errors.empty(), result == 1);
            EXPECT_TRUE(result == 1 || temporary_files().size() == files);
            check(model, result == 1);
          });
      EXPECT_GE(faults, 3U);
    }
    end_models();
  }

 private:
  // The removal of a file may be what failed.
  void end_models() {
    QDL_Terminate();
    for (const std::string &name : temporary_files())
      std::filesystem::remove(name);
  }
};

}  // namespace qdltest
