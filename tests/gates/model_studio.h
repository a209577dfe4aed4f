// All three gates of one studio at once, step by step at random against a model in memory: values, enumerations that
// run beside each other and beside changes, closing and opening in between, and the structure of both files.
#pragma once

#include <memory>
#include <string>

#include "tests/gates/model_door.h"

namespace testing_support {

// A studio, three gates to it, and a second main gate. What differs from the model is a failure of the current test.
class ModelStudio {
public:
    static std::unique_ptr<ModelStudio> make();
    virtual ~ModelStudio() = default;

    virtual const std::string& folder() const = 0;
    virtual const ModelCounts& counts() const = 0;

    virtual void step(Random& random) = 0;
    virtual void expect_all_rows() = 0;
    virtual void close(Random& random) = 0;
    virtual void open(Random& random) = 0;
    // Copies the files to where the comparison with another system wants them.
    virtual void keep_files() const = 0;
    virtual void expect_sound_files() const = 0;
};

}  // namespace testing_support
