#pragma once

namespace nimbuscope {

/// What can be wrong with stored preferences beyond their being no JSON.
enum class PreferencesServiceError {
    unableToReadPreferencesVersion,  ///< missing, not an integer, or of no known schema
};

}  // namespace nimbuscope
