# The names that the product goes by, said once. Resources/Info.plist.in carries them into the macOS bundle,
# HelperProtocol/linux/BuiltInBrandValues.h.in into the Linux programs.

set(VESPRA_BRAND_APP_NAME "Vespra")
set(VESPRA_BRAND_APP_BUNDLE_ID "app.vespra.Vespra")
set(VESPRA_BRAND_HELPER_BUNDLE_ID "app.vespra.Helper")
set(VESPRA_BRAND_TEAM_ID "VESPRATEAM" CACHE STRING "The Apple team that signs the macOS programs")
set(VESPRA_BRAND_AGENT_CLI_NAME "vespra-agent")
