// The registry paths of the product, relative to a hive.
#ifndef TESSARY_MODULE_REGISTRY_KEYS_H
#define TESSARY_MODULE_REGISTRY_KEYS_H

namespace tsypr
{

inline constexpr wchar_t kProductKey[] = L"Software\\Zelmora\\Tessary";
inline constexpr wchar_t kProductPolicyKey[] = L"Software\\Policies\\Zelmora\\Tessary";
inline constexpr char kDriverKey[] = "Software\\Zelmora\\Tessary\\PrintRedir";
inline constexpr wchar_t kLanguageKey[] = L"Software\\Zelmora\\Tessary\\PrintRedir\\plugins\\";
inline constexpr char kDriverPolicyKey[] = "Software\\Policies\\Zelmora\\Tessary\\PrintRedir";
// Policies may still be deployed under the product's former name.
inline constexpr char kLegacyDriverPolicyKey[] = "Software\\Policies\\Brenlow, Inc.\\Brenlow LDX\\PrintRedir";

} // namespace tsypr

#endif
