#include "regions/ui/averaging_plot_dialog.h"
