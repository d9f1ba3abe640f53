// Performance-monitoring record conversion between MS and IM forms.
