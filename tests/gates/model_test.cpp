// Ten thousand random steps through all gates against the model.
#include "tests/gates/model_studio.h"

using namespace testing_support;

namespace {

constexpr int kSteps = 10000;

TEST(ModelGate, random_steps_through_all_gates_answer_as_the_model_does) {
    const std::unique_ptr<ModelStudio> studio = ModelStudio::make();
    Random random(20);
    for (int step = 0; step < kSteps; ++step) {
        studio->step(random);
        ASSERT_FALSE(testing::Test::HasFailure()) << "at step " << step;
    }
    const ModelCounts counts = studio->counts();
    EXPECT_GT(counts.found, 500);
    EXPECT_GT(counts.delivered, 1000);
    EXPECT_GT(counts.delivered_changed, 20);
    EXPECT_GT(counts.passed_over, 50);
    EXPECT_GT(counts.left_out, 50);
    EXPECT_GT(counts.run_to_the_end, 50);
    EXPECT_GT(counts.ended_by_closing, 100);

    studio->expect_all_rows();
    studio->close(random);
    studio->expect_sound_files();
    studio->keep_files();
    studio->open(random);
    studio->expect_all_rows();
}

}  // namespace
