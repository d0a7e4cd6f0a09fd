#include "CommandRun.h"

#include "state/BankFile.h"
#include "state/Chunks.h"

namespace fs = std::filesystem;

using BankCommandTest = CommandRun::CommandTest;

namespace {

std::string patchNamed(const std::string& name) {
    return "MurmelonPatch: { format: 1, name: \"" + name + "\", parameters: { pitch: \"-12 sm\" } }";
}

} // namespace

TEST_F(BankCommandTest, makesListsAndExports) {
    write("1", patchNamed("One"));
    write("2", patchNamed("A/B: \\\"x\\\" ..."));
    EXPECT_EQ(run({"bank", "--make", "out.fxb", "1", "2"}).status, 0);
    const auto listed = run({"bank", "out.fxb", "--export", "to/here"});
    EXPECT_EQ(listed.output, "1\tOne\n2\tA/B: \"x\" ...\n");
    EXPECT_EQ(read("to/here/01 One.kvmp").substr(0, 45),
              "MurmelonPatch: {\r\n\tformat: 1\r\n\tname: \"One\"\r\n\t");
    EXPECT_EQ(run({"bank", "--make", "again.fxb", "to/here/01 One.kvmp", "to/here/02 A_B_ _x_.kvmp"}).status,
              0);
    EXPECT_EQ(read("again.fxb"), read("out.fxb"));
    EXPECT_EQ(run({"bank", "-"}, read("out.fxb")).output, listed.output);
}

TEST_F(BankCommandTest, failsWithoutLeavingOrHarmingAnything) {
    write("good", patchNamed("One"));
    write("bad", "MurmelonPatch: { format: 0 }");
    write("out.fxb", "precious");
    const auto failed = run({"bank", "--make", "out.fxb", "good", "bad"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.errors, "error: Patch format is too old\n");
    EXPECT_EQ(read("out.fxb"), "precious");
    EXPECT_EQ(run({"bank", "out.fxb"}).errors, "error: Invalid format of FXB data\n");
    EXPECT_EQ(run({"bank", "--make", "out.fxb"}).status, 2);
    EXPECT_EQ(run({"bank", "good", "bad"}).status, 2);
    std::vector<std::string> tooMany = {"bank", "--make", "out.fxb"};
    tooMany.resize(3 + 17, "good");
    EXPECT_EQ(run(tooMany).status, 2);
    tooMany.pop_back();
    EXPECT_EQ(run(tooMany).status, 0);
}

TEST_F(BankCommandTest, theFactoryBankHoldsItsSixteenPrograms) {
    const std::string bank = CommandRun::contentsOf(MURMELON_FACTORY_BANK);
    EXPECT_EQ(run({"bank", MURMELON_FACTORY_BANK}).output,
              "1\tDefault\n2\t(C) 1978\n3\t(C) 2014\n4\tSuboctaver\n5\tSuperoctaver\n6\tFifth Element\n"
              "7\tPulse Fiction\n8\tC2 Schneider\n9\tBronchitis\n10\tSweet Sixteens\n11\tPseudo Rnd\n"
              "12\tImpulse Train\n13\tOut Of Tune\n14\tMice Backup\n15\tBlown Alias\n16\tMIDI In\n");
    // The headers of an early release: format 1, version 1, ten programs; first chunk format, written by 1.5.
    EXPECT_EQ(bank.substr(8, 20), std::string("FBCh\0\0\0\1BkMm\0\0\0\1\0\0\0\n", 20));
    EXPECT_EQ(bank.substr(160, 16), std::string("\x39\x79\x4D\x71\0\0\0\0mMkB\0\5\1\0", 16));
    Bnk::BankContent content(Bnk::chunkOfBankFile(bank));
    EXPECT_EQ(content.nextPatch(), "MurmelonPatch: {\n\tformat: 1\n\tname: \"Default\"\n\tmodified: true\n"
                                   "\tparameters: {\n\t\tsampleRate: \"22 kHz\"\n\t\tsync: \"Off\"\n"
                                   "\t\tframeRate: \"59.99999596149694 Hz\"\n\t\tmidi: \"Off\"\n"
                                   "\t\tpitch: \"0.0000000 sm\"\n\t\ttracking: \"100.0000000 %\"\n"
                                   "\t\tdetune: \"0.00000000000000 ct\"\n\t\tnoiseAdjust: \"0.0000000 %\"\n"
                                   "\t\tmix: \"100.0000000 %\"\n\t\tlegacyMode: \"Off\"\n\t}\n}\n");
    run({"bank", MURMELON_FACTORY_BANK, "--export", "."});
    const std::string defaults = "MurmelonPatch: { format: 1, name: \"Default\", modified: true }";
    EXPECT_EQ(run({"patch", "01 Default.kvmp"}).output, run({"patch", "-"}, defaults).output);
}
