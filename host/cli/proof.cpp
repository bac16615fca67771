// Pieces wait in a short queue, so that neither side holds the whole text.
#include "cli/proof.h"

#include <system_error>
#include <utility>

#include "cli/cancel.h"
#include "cli/messages.h"

namespace rovescio::cli {

namespace {

constexpr std::size_t kMostPieces = 4;

}  // namespace

Proof::Proof(const musicxml::ScoreFile& score, const engine::Document& document,
             const std::optional<musicxml::WrittenFile>& written)
    : score_(score), written_(written ? &*written : nullptr) {
    if (written_ && written_->isChanged()) reader_ = score.proofreader(document);
}

Proof::~Proof() {
    end();
}

bool Proof::writeTo(const musicxml::ByteSink& sink) {
    if (!reader_ || begun_ || !written_->isText()) return written_->writeTo(sink);
    begin();
    const bool taken = written_->writeTo([&](std::string_view piece) {
        hand(piece);
        return sink(piece);
    });
    end();
    // Of a text that could not be written whole, the end is missing: that is not the text's fault.
    if (!taken) found_.reset();
    return taken;
}

const std::optional<engine::Problem>& Proof::fault() {
    if (reader_ && !begun_) {
        begin();
        written_->writeTextTo([&](std::string_view piece) {
            hand(piece);
            return true;
        });
        end();
    }
    if (found_) fault_ = score_.unsound(*found_);
    // Nothing that was read since then can be relied on.
    if (written_ && !score_.isSourceSame()) {
        fault_ =
            problemWith("another program changed the score while it was being worked on; nothing was written",
                        "Run the command again");
        code_ = ExitCode::badInput;
    }
    return fault_;
}

void Proof::begin() {
    begun_ = true;
    // Signals are for the thread that writes.
    const HeldSignals held;
    try {
        thread_ = std::thread([this] { readHanded(); });
    } catch (const std::system_error&) {
        // No thread: hand() reads.
    }
}

void Proof::hand(std::string_view piece) {
    if (!thread_.joinable()) return reader_->read(piece);
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return handed_.size() < kMostPieces; });
    handed_.emplace_back(piece);
    changed_.notify_all();
}

void Proof::end() {
    if (!begun_ || ended_) return;
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        changed_.notify_all();
    }
    if (thread_.joinable()) {
        thread_.join();
    } else {
        found_ = reader_->finish();
    }
}

void Proof::readHanded() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [&] { return ended_ || !handed_.empty(); });
        if (handed_.empty()) break;
        const std::string piece = std::move(handed_.front());
        handed_.pop_front();
        changed_.notify_all();
        lock.unlock();
        reader_->read(piece);
        lock.lock();
    }
    lock.unlock();
    found_ = reader_->finish();
}

}  // namespace rovescio::cli
