// SPDX-License-Identifier: MIT
#pragma once

namespace vantora::AccessibleRoles {

/// Gives the window's own widgets the roles that assistive tools expect: a text for a
/// LiveReading, a graphic for a StatusPreview. Calling it again changes nothing. Main thread.
void install();

}  // namespace vantora::AccessibleRoles
