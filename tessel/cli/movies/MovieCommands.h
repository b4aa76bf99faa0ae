/// The commands that read or write movies.
///
/// `tessel` knows their command lines, but not FFmpeg's libraries, which take longer to load than most commands
/// take to run. The program `tessel-movies`, which stands apart, is linked with them and runs these commands.
#pragma once

#include <tessel/cli/OutputOptions.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tessel::cli {

struct Context;

/// Command lines as typed. @{
struct RunOptions {
    bool allowDefault = false;
    bool dryRun = false;
    bool noProgress = false;
    bool quiet = false;
};

struct RenderOptions {
    std::vector<std::string> clips;
    std::string output;
    OutputOptions out;
    std::string timecode;
    std::string part;
    std::filesystem::path hashes; ///< `--hash`
    std::filesystem::path verify;
    std::filesystem::path truth;
    RunOptions how;
};

struct JoinOptions {
    std::string clip;
    std::vector<std::filesystem::path> parts;
    std::string output;
    OutputOptions out;
    std::string timecode;
    RunOptions how;
};

struct DamageOptions {
    std::string clip;
    std::string output;
    OutputOptions out;
    std::vector<std::string> faults;
    bool list = false;
};

struct VerifyOptions {
    std::string clip;
    std::string movie;
    std::vector<std::string> only;
    std::vector<std::string> accept;
    std::vector<std::string> tolerances;
    std::string fidelity = "some";
    std::string junit;
    std::string html;
    bool asJson = false;
    bool isQuiet = false;
    bool isStrict = false;
    bool printList = false;
    bool printSchema = false;
    std::string visible;
    bool allowDefault = false;
    bool noProgress = false;
    int threads = 0;
};

struct ThumbnailOptions {
    std::filesystem::path clip;
    std::filesystem::path output;
    int size = 256;
};
/// @}

/// Declare options that `render` and `join` share. The variables must live until the command has run. @{
void AddTimecodeOption(const Command& command, std::string& timecode);
void AddRunOptions(const Command& command, RunOptions& options);
/// @}

/// Each runs its command. In `tessel` they start `tessel-movies` in the program's place, with the same
/// arguments.
/// @throws UsageError, and what the work throws
/// @{
void RunRender(const RenderOptions& options, Context& context);
void RunJoin(const JoinOptions& options, Context& context);
void RunDamage(const DamageOptions& options, Context& context);
void RunVerify(const VerifyOptions& options, Context& context);
void RunThumbnail(const ThumbnailOptions& options, Context& context);
/// @}

} // namespace tessel::cli
