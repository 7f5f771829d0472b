#include "sender.h"

#include <algorithm>
#include <array>
#include <boost/beast/http/status.hpp>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string_view>

namespace Server {

namespace {

constexpr std::uint64_t NoEnd = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t BlockSize = std::size_t{256} * 1024;
/// A block, and around it the headers or a chunk's frame. A redirect's address is a request's
/// header or a rule's text, so it is shorter than HeaderLimit.
constexpr std::size_t RoomSize = BlockSize + 2 * HeaderLimit;
constexpr std::chrono::milliseconds TrickleStep{50};
constexpr std::string_view HtmlPage =
    "<!DOCTYPE html>\n<html><head><title>Sign in</title></head>\n"
    "<body><h1>Welcome to our network</h1><p>Please sign in to go on.</p></body></html>\n";

const Fault NoFault;

class Sender {
public:
    Sender(Transport& transport, const Answer& answer, const ActiveRule* rule, bool withBody,
           bool keepAlive)
        : transport_(transport),
          answer_(answer),
          rule_(rule),
          fault_(rule ? rule->rule.fault : NoFault),
          withBody_(withBody) {
        total_ = answer.body->Size();
        if (total_) *total_ -= std::min(*total_, fault_.shorter);
        if (total_) *total_ += fault_.longer;
        end_ = fault_.cut ? std::min(fault_.cut->In(total_), total_.value_or(NoEnd))
                          : total_.value_or(NoEnd);
        endsByClose_ = !fault_.chunked && (fault_.noLength || !total_);
        // Behind a body of another length than told there is no telling where an answer begins.
        surprises_ = fault_.cut || fault_.length || fault_.lengthError;
        keepAlive_ = keepAlive && !endsByClose_ && !surprises_;
    }

    Sent Run() {
        const bool complete = SendAll();
        if (complete && fault_.reset) {
            transport_.Reset();
        } else if (complete && !keepAlive_) {
            transport_.Close();
        }
        return {position_, total_, complete && keepAlive_};
    }

private:
    bool SendAll() {
        if (fault_.latency.count() > 0 && !transport_.Pause(fault_.latency)) return false;
        if (fault_.stall == StallAt::BeforeHeaders && !Stall()) return false;
        // A cut at the very start of the body leaves the headers whole; they are needed to tell
        // how much is missing.
        QueueHeaders();
        if (fault_.stall == StallAt::AfterHeaders && !(Flush() && Stall())) return false;
        if (withBody_ && !SendBody()) return false;
        return Flush();
    }

    bool Stall() { return transport_.PauseUntil(rule_->cleared); }

    /// Room for so many more bytes at the end of what waits to be sent.
    std::span<char> Grow(std::size_t count) {
        const std::span<char> room(pending_.get() + pendingSize_, count);
        pendingSize_ += count;
        return room;
    }

    void Queue(std::string_view text) { std::ranges::copy(text, Grow(text.size()).begin()); }

    bool Flush() {
        const bool written = transport_.Write({pending_.get(), pendingSize_});
        pendingSize_ = 0;
        return written;
    }

    void QueueHeaders() {
        namespace http = boost::beast::http;
        const auto reason = http::obsolete_reason(http::int_to_status(answer_.status));
        std::string text = "HTTP/1.1 " + std::to_string(answer_.status) + " " +
                           std::string(reason) + "\r\nServer: tolvan-server\r\n";
        if (!answer_.location.empty()) text += "Location: " + answer_.location + "\r\n";
        text += "Content-Type: " + answer_.contentType + "\r\n";
        if (fault_.chunked) {
            text += "Transfer-Encoding: chunked\r\n";
        } else if (!endsByClose_) {
            text += "Content-Length: " + std::to_string(ToldLength()) + "\r\n";
        }
        if (!keepAlive_ && !surprises_) text += "Connection: close\r\n";
        Queue(text + "\r\n");
    }

    std::uint64_t ToldLength() const {
        const std::int64_t error = fault_.lengthError.value_or(0);
        const std::uint64_t length = *total_ + static_cast<std::uint64_t>(error);
        return fault_.length.value_or(error < 0 && length > *total_ ? 0 : length);
    }

    bool SendBody() {
        if (CanSendFile()) return SendFile();
        const bool stalls = fault_.stall == StallAt::InBody;
        const std::uint64_t stallPlace = stalls ? fault_.stallPlace.In(total_) : NoEnd;
        bool stalled = false;
        while (position_ < end_ || (stalls && !stalled)) {
            if (stalls && !stalled && position_ == std::min(stallPlace, end_)) {
                stalled = true;
                if (!(Flush() && Stall())) return false;
                continue;
            }
            const std::uint64_t next = position_ < stallPlace ? std::min(stallPlace, end_) : end_;
            QueueBlock(static_cast<std::size_t>(std::min<std::uint64_t>(next - position_, Step())));
            if (fault_.bytesPerSecond) {
                if (!(Flush() && transport_.Pause(TrickleTime()))) return false;
            } else if (pendingSize_ >= BlockSize && !Flush()) {
                return false;
            }
        }
        if (fault_.chunked && !fault_.cut) Queue("0\r\n\r\n");
        return true;
    }

    /// The headers and a small file go out together, so that they share a packet.
    bool CanSendFile() const {
        return answer_.body->File() >= 0 && !transport_.IsSecure() && !rule_ && *total_ > BlockSize;
    }

    bool SendFile() {
        if (!Flush()) return false;
        position_ = transport_.SendFile(answer_.body->File(), 0, *total_);
        return position_ == *total_;
    }

    /// How much goes out in one piece.
    std::uint64_t Step() const {
        if (!fault_.bytesPerSecond) return BlockSize - std::min(pendingSize_, BlockSize - 1);
        return std::clamp<std::uint64_t>(*fault_.bytesPerSecond / (1000 / TrickleStep.count()), 1,
                                         BlockSize);
    }

    std::chrono::milliseconds TrickleTime() const {
        return std::chrono::milliseconds(Step() * 1000 / *fault_.bytesPerSecond);
    }

    void QueueBlock(std::size_t count) {
        if (fault_.chunked) {
            std::array<char, 24> head{};
            std::snprintf(head.data(), head.size(), "%zx\r\n", count);
            Queue(head.data());
        }
        const std::span<char> block = Grow(count);
        answer_.body->Read(position_, block);
        if (fault_.flip) FlipBytes(block);
        if (fault_.chunked) Queue("\r\n");
        position_ += count;
    }

    void FlipBytes(std::span<char> block) const {
        const std::uint64_t first = fault_.flip->In(total_);
        for (std::size_t i = 0; i < block.size(); ++i) {
            const std::uint64_t at = position_ + i;
            if (at >= first && at - first < fault_.flipCount)
                block[i] = static_cast<char>(~block[i]);
        }
    }

    Transport& transport_;
    const Answer& answer_;
    const ActiveRule* rule_;
    const Fault& fault_;
    bool withBody_;
    bool keepAlive_ = false;
    bool endsByClose_ = false;
    bool surprises_ = false;  ///< the connection ends without having said so
    std::optional<std::uint64_t> total_;
    std::uint64_t end_ = 0;
    std::uint64_t position_ = 0;
    std::unique_ptr<char[]> pending_ = std::make_unique_for_overwrite<char[]>(RoomSize);
    std::size_t pendingSize_ = 0;
};

std::unique_ptr<Body> OtherBody(const Fault& fault) {
    switch (fault.body) {
        case BodyKind::Text:
            return TextBody(fault.text);
        case BodyKind::Html:
            return TextBody(std::string(HtmlPage));
        case BodyKind::Empty:
            return TextBody({});
        case BodyKind::Junk:
            return JunkBody(fault.size);
        case BodyKind::Big:
            return ListBody(fault.size);
        case BodyKind::Endless:
            return ListBody({});
        case BodyKind::Own:
        case BodyKind::File:
            break;
    }
    return nullptr;
}

}  // namespace

Answer ApplyToAnswer(Answer answer, const Fault& fault, const Tree& tree,
                     const std::string& target) {
    if (!fault.redirect.empty()) {
        answer = StatusPage(302);
        answer.location = fault.redirect == "self" ? target : fault.redirect;
    } else if (fault.status) {
        answer = StatusPage(*fault.status);
    }
    const unsigned status = fault.status.value_or(answer.status);
    if (fault.body == BodyKind::File) {
        answer = tree.FindFile(fault.text);
    } else if (auto body = OtherBody(fault)) {
        answer.body = std::move(body);
        // A page that stands in for a file says that all is well unless a status is told too.
        answer.status = 200;
        if (fault.body == BodyKind::Html) answer.contentType = "text/html; charset=utf-8";
    }
    if (fault.status) answer.status = status;
    return answer;
}

Sent Send(Transport& transport, const Answer& answer, const ActiveRule* rule, bool withBody,
          bool keepAlive) {
    return Sender(transport, answer, rule, withBody, keepAlive).Run();
}

}  // namespace Server
