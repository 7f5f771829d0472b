#include "platform/files.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class Sharing : public TestSupport::Scratch {
protected:
    Sharing() { WriteText(path_, "held"); }

    Error Hold(unsigned access, unsigned sharing) {
        return held_.Open(path_, {.access = access, .sharing = sharing});
    }

    std::wstring path_ = At(L"held.dat");
    File held_;
};

// Two handles go together when each allows what the other does.
TEST_F(Sharing, EveryPairOfHandlesObeysTheRule) {
    int allowed = 0;
    for (unsigned first = 0; first < 7 * 8; ++first) {
        const unsigned access = first / 8 + 1;
        const unsigned sharing = first % 8;
        ASSERT_EQ(Hold(access, sharing), Error::None);
        for (unsigned second = 0; second < 7 * 8; ++second) {
            const unsigned otherAccess = second / 8 + 1;
            const unsigned otherSharing = second % 8;
            const bool fits = (access & ~otherSharing) == 0 && (otherAccess & ~sharing) == 0;
            File other;
            ASSERT_EQ(other.Open(path_, {.access = otherAccess, .sharing = otherSharing}),
                      fits ? Error::None : Error::SharingViolation)
                << "access " << access << " sharing " << sharing << ", then access " << otherAccess
                << " sharing " << otherSharing;
            allowed += fits ? 1 : 0;
        }
    }
    EXPECT_EQ(allowed, 361);  // of 3136
}

TEST_F(Sharing, RemovingRenamingAndEmptyingAskTheHolders) {
    ASSERT_EQ(Hold(AccessRead, ShareRead | ShareWrite), Error::None);
    EXPECT_EQ(RemoveFile(path_), Error::SharingViolation);
    EXPECT_EQ(MovePath(path_, At(L"other.dat"), {}), Error::SharingViolation);
    ASSERT_EQ(Hold(AccessRead, ShareRead | ShareDelete), Error::None);
    File other;
    EXPECT_EQ(other.Open(path_, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::SharingViolation);
    EXPECT_EQ(ReadText(path_), "held");
    EXPECT_EQ(MovePath(path_, At(L"other.dat"), {}), Error::None);
    EXPECT_EQ(ReadText(At(L"other.dat")), "held");
}

TEST_F(Sharing, AnOpenFileIsNotReplaced) {
    WriteText(At(L"new.dat"), "new");
    for (const unsigned sharing : {ShareAll, ShareRead}) {
        ASSERT_EQ(Hold(AccessRead, sharing), Error::None);
        EXPECT_EQ(MovePath(At(L"new.dat"), path_, {.replaceExisting = true}), Error::AccessDenied);
        held_.Close();
        EXPECT_EQ(ReadText(path_), "held");
    }
    EXPECT_EQ(MovePath(At(L"new.dat"), path_, {.replaceExisting = true}), Error::None);
    EXPECT_EQ(ReadText(path_), "new");
}

}  // namespace
}  // namespace Platform
