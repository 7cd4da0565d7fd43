#include "app/model/AppModel.h"
