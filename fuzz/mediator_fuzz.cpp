// The mediator client's reading of the mediator's answers: each reading
// operation gets the input as the body of an ACK (with the verdict taken from
// the first byte), and must either deliver a value or fail without touching
// its output. The writing operations ignore the body but pass the verdict on.
#include "FuzzSupport.h"
#include "datacom/NullDataHolder.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using namespace tarnevel;

namespace {

// Answers every command with the given verdict and reply body, as the
// engine's requestCommand does after a reply came.
class AnsweringHolder : public NullDataHolder {
public:
    AnsweringHolder(Fcodes verdict, const std::string& body) : verdict(verdict), body(body) {}
    Fcodes requestCommand(const std::string&, const std::string& command, std::string& result, unsigned,
                          unsigned) override {
        ++commands;
        fuzz::check(!command.empty(), "a command is sent");
        result = body;
        return verdict;
    }
    int commands = 0;

private:
    Fcodes verdict;
    std::string body;
};

// The verdicts a mediator gives: success, and a few failures.
Fcodes verdictOf(uint8_t byte) {
    static const Fcodes verdicts[] = {FC_OK, FC_OK, FC_OK, FC_NO_SUCH_NAME, FC_COMM_ERROR, FC_HEADER_ERROR};
    return verdicts[byte % (sizeof verdicts / sizeof verdicts[0])];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::usePrivateRoot();
    fuzz::Input input(data, size);
    const Fcodes verdict = verdictOf(input.byte());
    AnsweringHolder holder(verdict, input.rest());

    const std::string untouched = "untouched";
    std::string text = untouched, assembly = untouched, state = untouched;
    int number = -12345;
    const Fcodes textCode = ITarnevelClient::getTarnevelTextParam(&holder, "Video Encoder CH0", "Bitrate", text);
    const Fcodes intCode = ITarnevelClient::getTarnevelIntParam(&holder, "Video Encoder CH0", "Bitrate", &number);
    const Fcodes assemblyCode = ITarnevelClient::getTarnevelAssembly(&holder, assembly);
    const Fcodes stateCode = ITarnevelClient::getTarnevelBranchState(&holder, "UDP CH0", state);
    fuzz::check(isOk(textCode) || text == untouched, "a failed text read leaves its output");
    fuzz::check(isOk(intCode) || number == -12345, "a failed number read leaves its output");
    fuzz::check(isOk(assemblyCode) || assembly == untouched, "a failed assembly read leaves its output");
    fuzz::check(isOk(stateCode) || state == untouched, "a failed branch state read leaves its output");
    if (!isOk(verdict))
        fuzz::check(textCode == verdict && intCode == verdict && assemblyCode == verdict && stateCode == verdict,
                    "the mediator's failure is what every read returns");
    // A value comes from between quotes: it can hold none.
    fuzz::check(!isOk(textCode) || text.find('"') == std::string::npos, "a text value holds no quote");

    const Fcodes put = ITarnevelClient::setTarnevelTextParam(&holder, "TS Multiplexer CH1", "Mode", "CBR");
    fuzz::check(put == (verdict | FC_OK), "a write returns the mediator's verdict");
    ITarnevelClient::stopTarnevelBranch(&holder, "UDP CH0", true, 30);
    fuzz::check(holder.commands == 6, "one command per operation");
    return 0;
}
