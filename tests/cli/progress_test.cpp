// The text of the progress bar.
#include <gtest/gtest.h>

#include "output/terminal.hpp"

namespace {

TEST(Progress, SaysHowManyFilesHowFastAndHowLongStill) {
    EXPECT_EQ((cli::Advance{40, 12, 400'000'000, 100'000'000, 0.5}.text()),
              "[#######.......................] 12/40 files, 200 MB/s, 0:02 left");
    EXPECT_EQ((cli::Advance{40, 40, 400'000'000, 400'000'000, 2}.text()),
              "[##############################] 40/40 files, 200 MB/s, 0:00 left");
}

TEST(Progress, OfOneFileIsInBytes) {
    EXPECT_EQ((cli::Advance{1, 0, 2'100'000'000, 210'000'000, 1}.text()),
              "[###...........................] 0.2 of 2.1 GB, 210 MB/s, 0:09 left");
    EXPECT_EQ((cli::Advance{1, 0, 40'000'000, 10'000'000, 100}.text()),
              "[#######.......................] 10.0 of 40.0 MB, 0 MB/s, 5:00 left");
    EXPECT_EQ((cli::Advance{1, 0, 4'000'000'000'000, 1'000'000'000, 1}.text()),
              "[..............................] 1.0 of 4000.0 GB, 1000 MB/s, 1:06:39 left");
}

// The size of a pipe is not known.
TEST(Progress, WithoutAnEndSaysNoneOfIt) {
    EXPECT_EQ((cli::Advance{1, 0, 0, 1'500'000'000, 3}.text()), "1.5 GB, 500 MB/s");
    EXPECT_EQ((cli::Advance{30, 3, 0, 60'000'000, 1}.text()),
              "[###...........................] 3/30 files, 60 MB/s");
}

TEST(Progress, SaysNoRateBeforeThereIsOne) {
    EXPECT_EQ((cli::Advance{30, 0, 5000, 0, 1}.text()),
              "[..............................] 0/30 files");
    EXPECT_EQ((cli::Advance{30, 0, 5000, 50, 0}.text()),
              "[..............................] 0/30 files");
}

// A file that grows while it is read, and empty ones.
TEST(Progress, GoesNoFurtherThanTheEnd) {
    EXPECT_EQ((cli::Advance{2, 1, 1'000'000, 3'000'000, 1}.text()),
              "[##############################] 1/2 files, 3 MB/s, 0:00 left");
    EXPECT_EQ((cli::Advance{30, 15, 0, 0, 1}.text()),
              "[###############...............] 15/30 files");
}

} // namespace
